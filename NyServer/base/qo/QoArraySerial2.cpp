#include "QoArraySerial2.h"

#include <vector>

IMPLEMENT_DYNAMIC(QoArraySerial2, CObArray)

namespace {

// The schema under which an element is read. `described` is the schema in its class description;
// `callers` is the archive's object schema. A writer that uses an older schema omits fields but
// still describes the class with the current one, so the caller sets the agreed schema, with
// VERSIONABLE_SCHEMA, and the older of the two applies. A value without that flag was not set by
// the caller: it is the stored schema of the table itself, and is ignored.
UINT schemaInForce(UINT described, UINT callers) {
    const bool isAgreed = (callers & VERSIONABLE_SCHEMA) != 0;
    return isAgreed && (callers & ~VERSIONABLE_SCHEMA) < described ? callers : described;
}

// Sets that schema on the archive and restores the caller's at the end of the scope.
class ObjectSchemaScope {
  public:
    ObjectSchemaScope(CArchive& ar, UINT schema) : m_archive(ar), m_callers(ar.GetObjectSchema()) {
        ar.SetObjectSchema(schemaInForce(schema, m_callers));
    }
    ~ObjectSchemaScope() { m_archive.SetObjectSchema(m_callers); }
    ObjectSchemaScope(const ObjectSchemaScope&) = delete;
    ObjectSchemaScope& operator=(const ObjectSchemaScope&) = delete;

  private:
    CArchive& m_archive;
    const UINT m_callers;
};

// The fields that the record writes.
std::vector<BYTE> fieldsOf(QoObject2& record) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    record.Serialize(ar);
    ar.Close();
    std::vector<BYTE> fields(static_cast<size_t>(file.GetLength()));
    file.SeekToBegin();
    file.Read(fields.data(), static_cast<UINT>(fields.size()));
    return fields;
}

[[noreturn]] void throwBadIndex(const CArchive& ar) {
    AfxThrowArchiveException(CArchiveException::badIndex, ar.m_strFileName);
}

}  // namespace

// Resolves references to records that the same load of a table has read. REQUIRES: created before
// the table reads.
class QoArraySerial2::BackReferences {
  public:
    explicit BackReferences(const CArchive& ar)
        : m_archive(ar),
          m_numbersBefore(ar.LastReadNumber()),
          m_bytesBefore(ar.BytesLeft()),
          m_allowance(m_numbersBefore <= kNumbersOfTable ? kAllowance : 0) {}

    // A clone of the record with that number, for a table of `size` records. Throws badIndex when
    // the record is not of that class, was not read by this load or has no complete copy, or when
    // the references exceed the memory limit below.
    std::unique_ptr<QoObject2> clone(DWORD number, const CRuntimeClass* wanted, INT_PTR size) {
        CObject* const found =
            number > m_numbersBefore ? m_archive.FindReadObject(number) : nullptr;
        if (found == nullptr || !found->IsKindOf(wanted)) throwBadIndex(m_archive);
        QoObject2& record = static_cast<QoObject2&>(*found);
        const std::vector<BYTE> fields = fieldsOf(record);
        count(record, fields.size(), size);
        std::unique_ptr<QoObject2> clone(record.vClone());
        if (clone == nullptr) AfxThrowMemoryException();
        const bool isComplete =
            clone->GetRuntimeClass() == record.GetRuntimeClass() && fieldsOf(*clone) == fields;
        if (!isComplete) throwBadIndex(m_archive);
        return clone;
    }

  private:
    // A reference is 2 bytes, a record a hundred and more: all records of a table with references
    // take at most so many times the bytes of the table. The table that an archive begins with, as
    // a reply does, may take a little more: one user alone may hold a lock many times.
    static constexpr ULONGLONG kMostMultiple = 18;
    static constexpr ULONGLONG kAllowance = 2048;
    static constexpr DWORD kNumbersOfTable = 2;  // its class and itself
    static constexpr ULONGLONG kPlace = 32;      // in the table, which grows

    void count(const QoObject2& record, size_t fields, INT_PTR size) {
        m_cloned += fields;
        const ULONGLONG each = static_cast<ULONGLONG>(record.GetRuntimeClass()->m_nObjectSize);
        const ULONGLONG records = static_cast<ULONGLONG>(size) + 1;
        const ULONGLONG bytes = m_bytesBefore - m_archive.BytesLeft();
        const ULONGLONG memory = records * (each + kPlace) + m_cloned;
        if (memory > kMostMultiple * bytes + m_allowance) throwBadIndex(m_archive);
    }

    const CArchive& m_archive;
    const DWORD m_numbersBefore;
    const ULONGLONG m_bytesBefore;
    const ULONGLONG m_allowance;
    ULONGLONG m_cloned = 0;  // bytes of the fields of all clones
};

void QoArraySerial2::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        CObArray::Serialize(ar);
        return;
    }
    RemoveAll();
    BackReferences backReferences(ar);
    try {
        for (size_t left = ar.ReadCount(); left > 0; --left) {
            std::unique_ptr<QoObject2> element = readElement(ar, backReferences);
            append(element.get());
            static_cast<void>(element.release());
        }
    } catch (...) {
        deleteLoaded();
        throw;
    }
}

// Nobody has been given the records, so they are deleted whether this table owns its records or
// not.
void QoArraySerial2::deleteLoaded() {
    const bool owning = getDeleteObject();
    setDeleteObject(true);
    RemoveAll();
    setDeleteObject(owning);
}

std::unique_ptr<QoObject2> QoArraySerial2::readElement(CArchive& ar,
                                                       BackReferences& backReferences) const {
    UINT schema = 0;
    DWORD tag = 0;
    const CRuntimeClass* pClass = ar.ReadClass(nullptr, &schema, &tag);
    const CRuntimeClass* wanted =
        m_elementClass != nullptr ? m_elementClass : RUNTIME_CLASS(QoObject2);
    if (pClass == nullptr && tag != 0) return backReferences.clone(tag, wanted, GetSize());
    if (pClass == nullptr || !pClass->IsDerivedFrom(wanted)) {
        AfxThrowArchiveException(CArchiveException::badClass, ar.m_strFileName);
    }
    std::unique_ptr<QoObject2> element(static_cast<QoObject2*>(pClass->CreateObject()));
    if (element == nullptr) AfxThrowMemoryException();
    ar.MapObject(element.get());
    const ObjectSchemaScope scope(ar, schema);
    element->Serialize(ar);
    return element;
}
