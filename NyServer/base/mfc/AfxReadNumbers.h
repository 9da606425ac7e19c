// What a loading archive knows of the classes and objects that it has read. Internal to the class
// library.
#pragma once

#include <cstdint>
#include <vector>

#include "detail/AfxWrittenNumbers.h"

// Deeper than any archive that was written here; a hostile one must not use up the stack.
inline constexpr int kDeepestNesting = 100;

// The classes and objects that a loading archive has read.
class CArchive::ReadNumbers {
  public:
    struct Class {
        CRuntimeClass* pClass = nullptr;
        UINT schema = 0;  // as stored
    };

    // Return the number given; 0 if none is left.
    DWORD addObject(CObject* object) { return add(reinterpret_cast<uintptr_t>(object)); }
    DWORD addClass(const Class& added) {
        m_classes.push_back(added);
        return add(m_classes.size() << 1 | kIsClass);
    }

    DWORD last() const { return static_cast<DWORD>(m_entries.size()); }

    // Returns the class with that number; null if there is none.
    const Class* findClass(DWORD number) const {
        const uintptr_t entry = find(number);
        return (entry & kIsClass) != 0 ? &m_classes[(entry >> 1) - 1] : nullptr;
    }
    // Returns the object with that number; null if there is none, or it could not be read.
    CObject* findObject(DWORD number) const {
        const uintptr_t entry = find(number);
        return (entry & kIsClass) != 0 ? nullptr : reinterpret_cast<CObject*>(entry);
    }

    // Removes the objects from that number on: reading one of them has failed.
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
        if (m_entries.size() >= AfxTags::kLastNumber) return 0;
        m_entries.push_back(entry);
        return static_cast<DWORD>(m_entries.size());
    }

    // The address of an object, or the position of a class in m_classes, from 1, with a flag.
    std::vector<uintptr_t> m_entries;
    std::vector<Class> m_classes;
};
