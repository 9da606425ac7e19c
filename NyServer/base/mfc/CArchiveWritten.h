// How a storing archive numbers the classes and objects that it writes. Internal to the class
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
namespace AfxTags {
inline constexpr WORD kNullTag = 0x0000;
inline constexpr WORD kNewClassTag = 0xFFFF;
inline constexpr WORD kBigTag = 0x7FFF;     // a 4-byte tag follows
inline constexpr WORD kClassFlag = 0x8000;  // in a 2-byte tag
inline constexpr DWORD kBigClassFlag = 0x80000000;
inline constexpr DWORD kLastNumber = 0x3FFFFFFE;
inline constexpr WORD kLongestClassName = 63;
}  // namespace AfxTags

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
    // Gives marks to the objects of a loop, until takeBack. What it does not change lies apart from
    // what it does, for the sake of the compiler.
    class Marker {
      public:
        Marker() = default;
        explicit Marker(const WrittenNumbers& numbers)
            : m_base(numbers.m_base), m_end(numbers.m_usualEnd), m_last(numbers.m_last) {}

        // Marks an object that is new, as nearly every one is. False, with nothing changed, for any
        // other, and where the archive does not mark.
        bool mark(const CObject* object) {
            if (m_last >= m_end || object->m_archiveMark > m_base) return false;
            object->m_archiveMark = ++m_last;
            return true;
        }

      private:
        friend class WrittenNumbers;

        uint64_t m_base = 0;
        uint64_t m_end = 0;
        uint64_t m_last = 0;
    };

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

    void takeBack(const Marker& marker) { m_last = marker.m_last; }

    // The tag of the class of the objects of a type, where it is remembered; else 0. Objects of one
    // type are of one class, which saves asking each.
    WORD tagOf(const std::type_info& type) const {
        const Type& known = m_types[slotOf(type)];
        return known.type == &type ? known.tag : 0;
    }

    // Remembers the tag of that type's class, which was written earlier.
    void rememberTag(const std::type_info& type, const CRuntimeClass* pClass) {
        const DWORD number = numberOfClass(pClass);
        if (number < AfxTags::kBigTag)
            m_types[slotOf(type)] = {&type, static_cast<WORD>(AfxTags::kClassFlag | number)};
    }

    // The number of an object or a class written earlier; 0 for a new one.
    DWORD numberOfObject(const CObject* object) const {
        if (!m_isMarking) return m_numbers.find(object);
        const uint64_t mark = object->m_archiveMark;
        return mark > m_base ? static_cast<DWORD>(mark - m_base) : 0;
    }
    DWORD numberOfClass(const CRuntimeClass* pClass) const;

    // Give the next number to a new object, to a new class, or to nothing; false when all are used
    // up.
    bool addObject(const CObject* object);
    bool addClass(const CRuntimeClass* pClass);
    bool skipNumber() { return takeNumber() != 0; }

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
        if (m_last - m_base >= AfxTags::kLastNumber) return 0;
        return static_cast<DWORD>(++m_last - m_base);
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
