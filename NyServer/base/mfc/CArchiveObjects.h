// How an archive numbers the classes and objects that pass through it. Internal to the class
// library.
#pragma once

#include "CArchive.h"

#include <array>
#include <cstdint>
#include <typeinfo>
#include <vector>

#include "AfxObjectNumbers.h"

// Classes and objects share one sequence of numbers from 1; 0 stands for null. These limits are
// part of the encoding: do not change them.
inline constexpr WORD kNullTag = 0x0000;
inline constexpr WORD kNewClassTag = 0xFFFF;
inline constexpr WORD kBigTag = 0x7FFF;     // a 4-byte tag follows
inline constexpr WORD kClassFlag = 0x8000;  // in a 2-byte tag
inline constexpr DWORD kBigClassFlag = 0x80000000;
inline constexpr DWORD kLastNumber = 0x3FFFFFFE;
inline constexpr WORD kLongestClassName = 63;

// Nested deeper than any honest archive; keeps a hostile one from using up the stack.
inline constexpr int kDeepestNesting = 100;

// The numbers of what a storing archive has written.
//
// An object bears the number itself: its mark is the number added to a base that is above every
// mark given before, so that a mark from another archive is never taken for one of this. This goes
// well while nobody else marks: one archive in the process does at a time, the first that has
// written something, until it is closed. Any other that writes meanwhile, in the midst of the first
// one's objects or on another thread, leaves marks alone and keeps a table, at several times the
// cost. Marks are read and changed by that one archive only; copies of an object get none.
class CArchive::WrittenNumbers {
  public:
    WrittenNumbers();
    ~WrittenNumbers();
    WrittenNumbers(const WrittenNumbers&) = delete;
    WrittenNumbers& operator=(const WrittenNumbers&) = delete;

    // Numbers an object that is new and of a remembered type: nearly every object, where this
    // archive marks. Returns the tag of its class; 0, with nothing changed, for any other.
    WORD addUsual(const CObject* object) {
        if (m_last >= m_usualEnd || object->m_archiveMark > m_base) return 0;
        const WORD tag = tagOf(typeid(*object));
        if (tag != 0) object->m_archiveMark = ++m_last;
        return tag;
    }

    // The tag of the class of the objects of a type, where it is remembered; else 0. Objects of one
    // type are of one class, which saves asking each.
    WORD tagOf(const std::type_info& type) const {
        const Type& known = m_types[slotOf(type)];
        return known.type == &type ? known.tag : 0;
    }

    // Remembers the tag of that type's class, which was written earlier.
    void rememberTag(const std::type_info& type, const CRuntimeClass* pClass) {
        const DWORD number = numberOfClass(pClass);
        if (number < kBigTag)
            m_types[slotOf(type)] = {&type, static_cast<WORD>(kClassFlag | number)};
    }

    // The number of an object or a class written earlier; 0 for a new one.
    DWORD numberOfObject(const CObject* object) const {
        if (!m_isMarking) return m_numbers.find(object);
        const uint64_t mark = object->m_archiveMark;
        return mark > m_base ? static_cast<DWORD>(mark - m_base) : 0;
    }
    DWORD numberOfClass(const CRuntimeClass* pClass) const;

    // Give the next number to an object or a class; false when all are used up.
    bool addObject(const CObject* object);
    bool addClass(const CRuntimeClass* pClass);

  private:
    static constexpr size_t kTypes = 16;

    struct Type {
        const std::type_info* type = nullptr;
        WORD tag = 0;
    };
    struct Class {
        const CRuntimeClass* pClass;
        DWORD number;
    };

    static size_t slotOf(const std::type_info& type) {
        return reinterpret_cast<uintptr_t>(&type) / sizeof(std::type_info) % kTypes;
    }
    // 0 when all are used up.
    DWORD takeNumber() {
        return m_last - m_base < kLastNumber ? static_cast<DWORD>(++m_last - m_base) : 0;
    }

    const bool m_isMarking;
    // Marks: the base, the last one given, and the last one that may be.
    uint64_t m_base = 0;
    uint64_t m_last = 0;
    uint64_t m_usualEnd = 0;  // 0: this archive does not mark
    std::array<Type, kTypes> m_types;
    std::vector<Class> m_classes;
    AfxObjectNumbers m_numbers;
};

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
