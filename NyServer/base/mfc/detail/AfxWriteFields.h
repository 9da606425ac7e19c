// CArchive::WriteFields. Internal to the class library.
//
// Wins: records of a fixed size are written with one check of the space and no call, which takes
// half the time off a table of locks with three holders each.
#pragma once

#include "AfxWrittenNumbers.h"

// Not inlined, and without a call in its loop, so that it needs few registers.
template <class T, class FieldsOf>
[[gnu::noinline]] void CArchive::WriteFields(const CObject* const* objects, size_t count,
                                             FieldsOf fieldsOf) {
    constexpr bool anywhere = false;
    if (!tryWriteFields<T, anywhere>(objects, count, fieldsOf)) {
        writeFieldsAnywhere<T>(objects, count, fieldsOf);
    }
}

template <class T, class FieldsOf>
[[gnu::noinline]] void CArchive::writeFieldsAnywhere(const CObject* const* objects, size_t count,
                                                     FieldsOf fieldsOf) {
    constexpr bool anywhere = true;
    if (!tryWriteFields<T, anywhere>(objects, count, fieldsOf)) WriteObjects(objects, count);
}

// Nothing is changed until all objects are seen to be new and of that very type.
template <class T, bool ANYWHERE, class FieldsOf>
[[gnu::always_inline]] inline bool CArchive::tryWriteFields(const CObject* const* objects,
                                                            size_t count, FieldsOf fieldsOf) {
    using Fields = std::remove_cvref_t<std::invoke_result_t<FieldsOf, const T&>>;
    static_assert(std::has_unique_object_representations_v<Fields>);
    // A loading archive has written nothing.
    if (m_written == nullptr || !m_written->hasSpaceFor(count)) return false;
    WrittenType* const known = m_written->typeOf(typeid(T));
    const size_t bytes = sizeof(WORD) + count * (sizeof(WORD) + sizeof(Fields));
    if (known == nullptr || known->tag == 0 || spaceLeft() < bytes) return false;
    const WORD shortCount = static_cast<WORD>(count);
    const WORD tag = known->tag;
    BYTE* out = m_out + sizeof shortCount;
    const auto write = [&](const CObject& object) {
        const Fields fields = fieldsOf(static_cast<const T&>(object));
        std::memcpy(out, &tag, sizeof tag);
        std::memcpy(out + sizeof tag, &fields, sizeof fields);
        out += sizeof tag + sizeof fields;
    };
    if (!m_written->addNew<ANYWHERE>(objects, count, *known, write)) return false;
    std::memcpy(m_out, &shortCount, sizeof shortCount);
    m_out = out;
    return true;
}
