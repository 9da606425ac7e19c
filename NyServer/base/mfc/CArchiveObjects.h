// What a loading archive knows of the classes and objects that it has read. Internal to the class
// library.
#pragma once

#include <cstdint>
#include <vector>

#include "detail/AfxWrittenNumbers.h"

using namespace AfxTags;

// Nested deeper than any honest archive; keeps a hostile one from using up the stack.
inline constexpr int kDeepestNesting = 100;

// The classes and objects that a loading archive has read.
class CArchive::ReadNumbers {
  public:
    struct Class {
        CRuntimeClass* pClass = nullptr;
        UINT schema = 0;  // as stored
    };

    // The number given; 0 when all are used up.
    DWORD addObject(CObject* object) { return add(reinterpret_cast<uintptr_t>(object)); }
    DWORD addClass(const Class& added) {
        m_classes.push_back(added);
        return add(m_classes.size() << 1 | kIsClass);
    }

    DWORD last() const { return static_cast<DWORD>(m_entries.size()); }

    // What bears that number: null when it is no class.
    const Class* findClass(DWORD number) const {
        const uintptr_t entry = find(number);
        return (entry & kIsClass) != 0 ? &m_classes[(entry >> 1) - 1] : nullptr;
    }
    // Null when it is no object, or one that could not be read.
    CObject* findObject(DWORD number) const {
        const uintptr_t entry = find(number);
        return (entry & kIsClass) != 0 ? nullptr : reinterpret_cast<CObject*>(entry);
    }

    // The objects from that number on are gone: a read has failed half-way.
    void forgetFrom(DWORD number) {
        for (; number <= m_entries.size(); ++number) {
            if ((m_entries[number - 1] & kIsClass) == 0) m_entries[number - 1] = 0;
        }
    }

  private:
    static constexpr uintptr_t kIsClass = 1;

    uintptr_t find(DWORD number) const {
        return number >= 1 && number <= m_entries.size() ? m_entries[number - 1] : 0;
    }
    DWORD add(uintptr_t entry) {
        if (m_entries.size() >= kLastNumber) return 0;
        m_entries.push_back(entry);
        return static_cast<DWORD>(m_entries.size());
    }

    // The address of an object, or the position of a class in m_classes, from 1, with a flag.
    std::vector<uintptr_t> m_entries;
    std::vector<Class> m_classes;
};
