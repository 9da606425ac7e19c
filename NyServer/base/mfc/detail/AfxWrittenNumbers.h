// What a storing archive knows of the classes and objects that it has written. Internal to the
// class library.
#pragma once

#include <cstdint>
#include <forward_list>
#include <typeinfo>
#include <unordered_map>
#include <vector>

#include "AfxAddressSet.h"
#include "AfxPointerList.h"
#include "NyServer/base/mfc/CArchive.h"
#include "NyServer/base/mfc/CObject.h"

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

// A type of objects. Each object has one, and no two living objects share an address.
struct CArchive::WrittenType {
    const std::type_info* type;
    WORD tag;  // of their class; 0 if it was not written, or its tag takes 4 bytes
    AfxAddressSet::Word word;
};

// The number of an object is its place in the list of what was written. Nearly every object is new,
// which is found in the set of addresses. The map from objects to numbers is filled when an object
// may have been written before.
class CArchive::WrittenNumbers {
  public:
    // Returns null if no object of the type was written or mapped. Valid until the archive is
    // closed.
    WrittenType* typeOf(const std::type_info& type) {
        for (WrittenType& known : m_types) {
            if (known.type == &type) return &known;  // not by ==, which compares names
        }
        return nullptr;
    }

    // Return the number of a class or an object written earlier; 0 for a new one.
    DWORD numberOfClass(const CRuntimeClass* pClass) const;
    DWORD numberOfObject(const CObject* object);

    // Give the next number to a new class, to a new object (of that class, or without one), or to
    // nothing. Return false if none is left.
    bool addClass(const CRuntimeClass* pClass);
    bool addObject(const CObject* object, const CRuntimeClass* pClass);
    bool addObject(const CObject* object) { return m_list.add(object); }
    bool skipNumber() { return m_list.add(nullptr); }

    // Gives the next number to an object of that type. Returns false, with none given, if it was or
    // may have been written earlier.
    bool addNew(const CObject* object, WrittenType& known) {
        return isNew(object, known) && m_list.add(object);
    }
    // Does so for many, and calls `write` with each. Also returns false if one of them is null or
    // of another type, or, unless ANYWHERE, lies in another word of the set than the last one.
    template <bool ANYWHERE, class Write>
    bool addNew(const CObject* const* objects, size_t count, WrittenType& known, Write write) {
        const std::type_info* const type = known.type;
        AfxAddressSet::Word word = known.word;
        const void** const place = m_list.next();
        for (size_t i = 0; i < count; ++i) {
            if (!word.covers(objects[i])) {
                if (!ANYWHERE || objects[i] == nullptr) return false;
                m_seen.moveTo(objects[i], word);
            }
            const CObject& object = *objects[i];
            if (&typeid(object) != type || !word.insert(&object)) return false;
            write(object);
            place[i] = &object;
        }
        known.word.bits = word.bits;
        if (ANYWHERE) known.word = word;
        m_list.addWritten(count);
        return true;
    }
    bool hasSpaceFor(size_t count) const { return m_list.space() >= count; }

  private:
    struct Class {
        const CRuntimeClass* pClass;
        DWORD number;
    };

    bool isNew(const CObject* object, WrittenType& known) {
        if (!known.word.covers(object)) m_seen.moveTo(object, known.word);
        return known.word.insert(object);
    }

    AfxPointerList<AfxTags::kLastNumber> m_list;
    std::vector<Class> m_classes;
    std::forward_list<WrittenType> m_types;  // the newest first
    AfxAddressSet m_seen;                    // all objects in the list, and more
    std::unordered_map<const void*, DWORD> m_numbers;
    size_t m_inMap = 0;  // the number of pointers of the list that are in m_numbers
};
