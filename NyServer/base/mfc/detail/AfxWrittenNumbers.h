// What a storing archive knows of the classes and objects that it has written. Internal to the
// class library.
#pragma once

#include <cstdint>
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

// A number is a place in the list of what was written. Nearly every object is new, which the set of
// addresses tells; the map from objects to numbers is filled when one may have come again.
class CArchive::WrittenNumbers {
  public:
    struct Class {
        const CRuntimeClass* pClass;
        DWORD number;
        const std::type_info* type;  // of its objects, null when it is not known
        AfxAddressSet::Recent recent;
        WORD tag() const { return static_cast<WORD>(number | AfxTags::kClassFlag); }
    };

    // The class of the objects of a type; null when it is not known, or its tag takes 4 bytes.
    // Objects of one type are of one class, which saves asking each. Valid until the next class or
    // type is added.
    Class* classOf(const std::type_info& type) {
        for (auto known = m_classes.end(); known != m_classes.begin();) {
            // Not by ==, which compares names.
            if ((--known)->type == &type)
                return known->number < AfxTags::kBigTag ? &*known : nullptr;
        }
        return nullptr;
    }
    void addType(const std::type_info& type, const CRuntimeClass* pClass) {
        m_classes.push_back({pClass, numberOfClass(pClass), &type, {}});
    }

    // The number of a class or an object written earlier; 0 for a new one.
    DWORD numberOfClass(const CRuntimeClass* pClass) const;
    DWORD numberOfObject(const CObject* object);

    // Give the next number to a new class, to a new object, or to nothing; false when all are used
    // up.
    bool addClass(const CRuntimeClass* pClass);
    bool addObject(const CObject* object) { return m_list.add(object); }
    bool skipNumber() { return m_list.add(nullptr); }

    // Gives the next number to an object of that class. False, with none given, when it was or may
    // have been written earlier.
    bool addNew(const CObject* object, Class& known) {
        return m_seen.insert(object, known.recent) && m_list.add(object);
    }
    // The same for many, each of which `write` is called with. Also false when one of them is null
    // or of another type.
    template <class Write>
    bool addNew(const CObject* const* objects, size_t count, Class& known, Write write) {
        const std::type_info* const type = known.type;
        const void** const place = m_list.room(count);
        if (place == nullptr) return false;
        for (size_t i = 0; i < count; ++i) {
            const CObject* const object = objects[i];
            if (object == nullptr || &typeid(*object) != type) return false;
            if (!m_seen.insert(object, known.recent)) return false;
            write(*object);
            place[i] = object;
        }
        m_list.addWritten(count);
        return true;
    }

  private:
    AfxPointerList<AfxTags::kLastNumber> m_list;
    AfxAddressSet m_seen;  // all objects in the list, and more
    std::unordered_map<const void*, DWORD> m_numbers;
    size_t m_listed = 0;  // so many of the list are in m_numbers
    std::vector<Class> m_classes;
};
