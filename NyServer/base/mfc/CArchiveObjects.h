// How an archive numbers the classes and objects that pass through it. Internal to the class
// library.
#pragma once

#include "CArchive.h"

#include <algorithm>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "AfxAddressSet.h"

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

// The numbers of what a storing archive has written. Nearly every object is written once, so that
// the usual question is answered by a set of addresses; what was written is only listed, and
// indexed when something is met again.
class CArchive::WrittenNumbers {
  public:
    // Numbers an object that is new, of a remembered type and near to those written lately: nearly
    // every object. Returns the tag of its class; 0, with nothing changed, for any other.
    WORD addUsual(const CObject* object) {
        AfxAddressSet::Place place;
        if (m_next == m_end || !m_seen.findRecent(object, place) || place.isSet()) return 0;
        const WORD tag = tagOf(typeid(*object));
        if (tag == 0) return 0;
        place.set();
        *m_next++ = object;
        return tag;
    }

    // The tag of the class of the objects of a type, where it is remembered; else 0. Objects of one
    // type are of one class, which saves asking each.
    WORD tagOf(const std::type_info& type) const {
        const Type& known = m_types[slotOf(type)];
        return known.type == &type ? known.tag : 0;
    }

    // The number of an object written earlier; 0 for a new one, which counts as written from here
    // on.
    DWORD numberOfObject(const CObject* object) {
        if (isAligned(object)) {
            const AfxAddressSet::Place place = m_seen.find(object);
            if (!place.isSet()) {
                place.set();
                return 0;
            }
        }
        return numberInIndex(object);
    }

    // Remembers the tag of that type's class, which was written earlier.
    void rememberTag(const std::type_info& type, const CRuntimeClass* pClass) {
        const DWORD number = numberOfClass(pClass);
        if (number < kBigTag)
            m_types[slotOf(type)] = {&type, static_cast<WORD>(kClassFlag | number)};
    }

    // The number of a class written earlier; 0 for a new one.
    DWORD numberOfClass(const CRuntimeClass* pClass) { return numberInIndex(pClass); }

    // Gives the next number to an object; false when all are used up.
    bool addObject(const CObject* object) { return object != nullptr ? add(object) : skipNumber(); }

    bool addClass(const CRuntimeClass* pClass) { return add(pClass); }

  private:
    static constexpr size_t kTypes = 16;

    struct Type {
        const std::type_info* type = nullptr;
        WORD tag = 0;
    };
    // What has consecutive numbers.
    struct Run {
        DWORD firstNumber;
        std::unique_ptr<const void*[]> written;
        const void** end;  // kept up to date by closeRun
    };

    static bool isAligned(const void* pointer) {
        return reinterpret_cast<uintptr_t>(pointer) % AfxAddressSet::kAlignment == 0;
    }
    static size_t slotOf(const std::type_info& type) {
        return reinterpret_cast<uintptr_t>(&type) / sizeof(std::type_info) % kTypes;
    }
    bool add(const void* written) {
        if (m_next == m_end && !addRun()) return false;
        *m_next++ = written;
        return true;
    }
    DWORD nextNumber() const;
    bool skipNumber();
    bool addRun();
    void closeRun();
    DWORD numberInIndex(const void* written);

    AfxAddressSet m_seen;
    std::array<Type, kTypes> m_types;
    std::vector<Run> m_runs;
    const void** m_next = nullptr;  // in the last run
    const void** m_end = nullptr;
    DWORD m_skipped = 0;  // numbers behind the last run that stand for null
    std::unordered_map<const void*, DWORD> m_index;
    size_t m_indexedRuns = 0;       // the runs that are in the index
    ptrdiff_t m_indexedOfNext = 0;  // how much of the run behind them is
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
