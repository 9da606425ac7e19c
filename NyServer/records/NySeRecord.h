// The pattern that every record and every table of records follows, told once.
//
// A record is copied, cloned and compared through its base class. It says only what is its own: its
// fields, their archive order (Serialize), what a copy takes (typeCopyFrom) and how two compare
// under each key (typeCompareTo).
#pragma once

#include <afx.h>

#include "NyServer/ExceptionBoundary.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/records/detail/NySeTable.h"

namespace NySe {

// Or-ed with VERSIONABLE_SCHEMA, the declared schema of every record and table. It travels: do not
// change it.
inline constexpr UINT kRecordSchema = 2015;

// The object schema in force in `ar`, without the versionable flag; it stays in force.
inline UINT objectSchema(CArchive& ar) {
    const UINT schema = ar.GetObjectSchema();
    ar.SetObjectSchema(schema);
    return schema & ~VERSIONABLE_SCHEMA;
}

// The sum in 32 bits; numbers that were loaded may be anything, so that it may wrap.
inline LONG sum(LONG left, LONG right) {
    return static_cast<LONG>(static_cast<DWORD>(left) + static_cast<DWORD>(right));
}

// How comparisons answer. Hosts test these numbers: do not change them.
inline constexpr auto kNoOrder = static_cast<QoSort::CompareResult>(-2);  // the key is not known
inline constexpr auto kBefore = static_cast<QoSort::CompareResult>(-1);
inline constexpr auto kEqual = static_cast<QoSort::CompareResult>(0);
inline constexpr auto kAfter = static_cast<QoSort::CompareResult>(1);

// The order of two numbers by their signed 32-bit difference.
inline QoSort::CompareResult compareNumbers(LONG left, LONG right) {
    const LONG difference = static_cast<LONG>(static_cast<DWORD>(left) - static_cast<DWORD>(right));
    if (difference == 0) return kEqual;
    return difference < 0 ? kBefore : kAfter;
}

// The order of two texts, whatever their letter case.
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

// What a record and a table have in common: serialisable by class name, and these three.
//
// clone(): a new object with this one's contents, owned by the caller; null when no memory is left.
//
// cast(): `object` when it is of this class, else null; null for null.
//
// desc(): the class name in ASCII, for the life of the process.
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

// Opens a record's class body. operator== asks for key 0, which no record knows, so that it is true
// only of one and the same object: find and lookFor compare contents. vCompareTo gives noOrder for
// a key that typeCompareTo leaves alone.
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
