// The pattern that every record and every table of records follows.
//
// A record is copied, cloned and compared through its base class. Its class defines only its
// fields, their archive order (Serialize), what a copy contains (typeCopyFrom) and how two objects
// compare under each key (typeCompareTo).
#pragma once

#include <afx.h>

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/records/detail/NySeTable.h"

namespace NySe {

// Or-ed with VERSIONABLE_SCHEMA, the declared schema of every record and table. It is on the wire:
// do not change it.
inline constexpr UINT kRecordSchema = 2015;

// Returns the object schema of `ar` without the versionable flag. Unlike GetObjectSchema, leaves it
// set.
inline UINT objectSchema(CArchive& ar) {
    const UINT schema = ar.GetObjectSchema();
    ar.SetObjectSchema(schema);
    return schema & ~VERSIONABLE_SCHEMA;
}

// Adds modulo 2^32: loaded numbers may have any value.
inline LONG sum(LONG left, LONG right) {
    return static_cast<LONG>(static_cast<DWORD>(left) + static_cast<DWORD>(right));
}

// The results of comparisons, by number: the enumerators of the record base are not documented.
// Hosts test these numbers: do not change them.
inline constexpr auto kNoOrder = static_cast<QoSort::CompareResult>(-2);  // unknown key
inline constexpr auto kBefore = static_cast<QoSort::CompareResult>(-1);
inline constexpr auto kEqual = static_cast<QoSort::CompareResult>(0);
inline constexpr auto kAfter = static_cast<QoSort::CompareResult>(1);

// Compares two numbers by their signed 32-bit difference.
inline QoSort::CompareResult compareNumbers(LONG left, LONG right) {
    const LONG difference = static_cast<LONG>(static_cast<DWORD>(left) - static_cast<DWORD>(right));
    if (difference == 0) return kEqual;
    return difference < 0 ? kBefore : kAfter;
}

// Compares two texts without letter case.
inline QoSort::CompareResult compareTexts(const CString& left, const CString& right) {
    const int order = left.CompareNoCase(right);
    if (order == 0) return kEqual;
    return order < 0 ? kBefore : kAfter;
}

template <class T>
T* cloneRecord(const T& record) {
    return NySe::zeroIfOutOfMemory([&record] { return new T(record); });
}

template <class T>
const QoObject2& copyRecord(T& record, const QoObject2& other) {
    if (&other == &record) return record;
    if (!other.IsKindOf(RUNTIME_CLASS(T))) return record.QoObject2::vCopyFrom(other);
    record.typeCopyFrom(static_cast<const T&>(other));
    return record;
}

template <class T>
QoSort::CompareResult compareRecord(const T& record, const QoObject2& other, short key) {
    if (&other == &record) return kEqual;
    if (!other.IsKindOf(RUNTIME_CLASS(T))) return record.QoObject2::vCompareTo(other, key);
    QoSort::CompareResult result = kNoOrder;
    record.typeCompareTo(static_cast<const T&>(other), key, result);
    return result;
}

}  // namespace NySe

// What records and tables have in common: serialisation by class name, and these three functions.
//
// clone(): returns a copy, owned by the caller; null when out of memory.
//
// cast(): returns `object` if it is of this class, else null; null for null.
//
// desc(): returns the class name in ASCII, valid until the process ends.
#define NYSE_DECLARE_SERIAL(Class)                                              \
    DECLARE_DYNCREATE(Class)                                                    \
    friend NYSERVER_API CArchive& AFXAPI operator>>(CArchive& ar, Class*& pOb); \
                                                                                \
    NYSERVER_INLINE Class* clone() const {                                      \
        return NySe::cloneRecord(*this);                                        \
    }                                                                           \
    NYSERVER_INLINE static Class* cast(QoObject2* object) {                     \
        return DYNAMIC_DOWNCAST(Class, object);                                 \
    }                                                                           \
    NYSERVER_INLINE static const char* desc() {                                 \
        return class##Class.m_lpszClassName;                                    \
    }

// Opens a record's class body. operator== compares under key 0, which no record has, so it is true
// only for the same object; find and lookFor compare contents. vCompareTo returns noOrder for a key
// that typeCompareTo does not handle.
#define NYSE_DECLARE_RECORD(Record)                                                     \
    NYSE_DECLARE_SERIAL(Record)                                                         \
    NYSERVER_INLINE Record() = default;                                                 \
    NYSERVER_INLINE Record(const Record& other) : Record() {                            \
        vCopyFrom(other);                                                               \
    }                                                                                   \
    NYSERVER_INLINE ~Record() override = default;                                       \
    NYSERVER_INLINE Record& operator=(const Record& other) {                            \
        vCopyFrom(other);                                                               \
        return *this;                                                                   \
    }                                                                                   \
    NYSERVER_INLINE bool operator==(const Record& other) const {                        \
        return vCompareTo(other, 0) == NySe::kEqual;                                    \
    }                                                                                   \
    void Serialize(CArchive& ar) override;                                              \
    NYSERVER_INLINE QoObject2* vClone() const override {                                \
        return clone();                                                                 \
    }                                                                                   \
    NYSERVER_INLINE const QoObject2& vCopyFrom(const QoObject2& other) override {       \
        return NySe::copyRecord(*this, other);                                          \
    }                                                                                   \
    NYSERVER_INLINE QoSort::CompareResult vCompareTo(const QoObject2& other, short key) \
        const override {                                                                \
        return NySe::compareRecord(*this, other, key);                                  \
    }                                                                                   \
    void typeCopyFrom(const Record& other);                                             \
    void typeCompareTo(const Record& other, short key, QoSort::CompareResult& result) const;

// Opens a table's class body: an array of `Record`, sorted by its key 1, that owns its records
// unless the flag word has the bit 0x10000. The table defines Serialize.
#define NYSE_DECLARE_TABLE(Table, Record)                                         \
    NYSE_DECLARE_SERIAL(Table)                                                    \
    NYSERVER_INLINE Table() : Table(0UL) {}                                       \
    NYSERVER_INLINE explicit Table(unsigned long flags) : QoArraySerial2(flags) { \
        setSortCriteria(1, true);                                                 \
        NySe::setElementClass<QoArraySerial2>(*this, RUNTIME_CLASS(Record));      \
    }                                                                             \
    NYSERVER_INLINE Table(const Table& other) = default;                          \
    NYSERVER_INLINE ~Table() override = default;                                  \
    NYSERVER_INLINE Table& operator=(const Table& other) = default;               \
    void Serialize(CArchive& ar) override;                                        \
    NYSERVER_INLINE Record* GetAt(INT_PTR index) const {                          \
        return static_cast<Record*>(QoArraySerial2::GetAt(index));                \
    }                                                                             \
    NYSERVER_INLINE Record* ElementAt(INT_PTR index) const {                      \
        return GetAt(index);                                                      \
    }                                                                             \
    NYSERVER_INLINE Record* operator[](INT_PTR index) const {                     \
        return GetAt(index);                                                      \
    }
