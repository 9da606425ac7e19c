#include "CArchiveObjects.h"

#include <utility>

#include "CObject.h"

namespace {

bool acceptsSchema(const CRuntimeClass* pClass, UINT stored) {
    return (pClass->m_wSchema & VERSIONABLE_SCHEMA) != 0 || pClass->m_wSchema == stored;
}

}  // namespace

CArchive::ObjectNumbers& CArchive::numbers() {
    if (m_numbers == nullptr) m_numbers = std::make_unique<ObjectNumbers>();
    return *m_numbers;
}

void CArchive::throwBad(int cause) const {
    AfxThrowArchiveException(cause, m_strFileName);
}

void CArchive::writeTag(DWORD number, DWORD classFlag) {
    if (number < kBigTag) {
        *this << static_cast<WORD>(number | (classFlag != 0 ? kClassFlag : 0));
    } else {
        *this << kBigTag << static_cast<DWORD>(number | classFlag);
    }
}

void CArchive::WriteClass(const CRuntimeClass* pClass) {
    if (IsLoading()) throwWrongDirection();
    if (!pClass->IsSerializable()) AfxThrowNotSupportedException();
    if (const DWORD number = numbers().numberOf(pClass); number != 0) {
        writeTag(number, kBigClassFlag);
        return;
    }
    const size_t nameLength = std::strlen(pClass->m_lpszClassName);
    if (nameLength > kLongestClassName) AfxThrowNotSupportedException();
    *this << kNewClassTag << static_cast<WORD>(pClass->m_wSchema) << static_cast<WORD>(nameLength);
    Write(pClass->m_lpszClassName, static_cast<int>(nameLength));
    if (!numbers().addWritten(pClass)) throwBad(CArchiveException::badIndex);
}

void CArchive::WriteObject(const CObject* object) {
    if (IsLoading()) throwWrongDirection();
    if (object == nullptr) {
        *this << kNullTag;
        return;
    }
    if (const DWORD number = numbers().numberOf(object); number != 0) {
        writeTag(number, 0);
        return;
    }
    WriteClass(object->GetRuntimeClass());
    if (!numbers().addWritten(object)) throwBad(CArchiveException::badIndex);
    // Serialize is one function for both directions; a storing one does not change its object.
    const_cast<CObject*>(object)->Serialize(*this);
}

void CArchive::MapObject(const CObject* object) {
    if (IsLoading()) {
        addRead(nullptr, 0, const_cast<CObject*>(object));
    } else if (!numbers().addWritten(object)) {
        throwBad(CArchiveException::badIndex);
    }
}

CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* wanted, UINT* schema, DWORD* objectTag) {
    if (IsStoring()) throwWrongDirection();
    if (wanted != nullptr && !wanted->IsSerializable()) AfxThrowNotSupportedException();

    const DWORD number = readClassNumber(objectTag);
    if (number == 0) return nullptr;
    const ObjectNumbers::Read& read = *numbers().find(number);
    if (wanted != nullptr && !read.pClass->IsDerivedFrom(wanted)) {
        throwBad(CArchiveException::badClass);
    }
    if (schema != nullptr) *schema = read.schema;
    return read.pClass;
}

DWORD CArchive::readClassNumber(DWORD* objectTag) {
    WORD shortTag;
    *this >> shortTag;
    if (shortTag == kNewClassTag) return readNewClass();

    DWORD tag = (shortTag & kClassFlag) != 0 ? kBigClassFlag | (shortTag ^ kClassFlag) : shortTag;
    if (shortTag == kBigTag) *this >> tag;
    if ((tag & kBigClassFlag) == 0) {
        if (objectTag == nullptr) throwBad(CArchiveException::badIndex);
        *objectTag = tag;
        return 0;
    }
    const DWORD number = tag ^ kBigClassFlag;
    const ObjectNumbers::Read* known = numbers().find(number);
    if (known == nullptr || known->pClass == nullptr) throwBad(CArchiveException::badIndex);
    return number;
}

DWORD CArchive::readNewClass() {
    WORD schema;
    WORD nameLength;
    *this >> schema >> nameLength;
    if (nameLength == 0 || nameLength > kLongestClassName) throwBad(CArchiveException::badIndex);
    char name[kLongestClassName + 1] = {};
    EnsureRead(name, nameLength);

    CRuntimeClass* pClass = CRuntimeClass::FromName(name);
    if (pClass == nullptr || pClass->m_pfnCreateObject == nullptr || !pClass->IsSerializable() ||
        std::strlen(name) != nameLength) {
        throwBad(CArchiveException::badClass);
    }
    if (!acceptsSchema(pClass, schema)) throwBad(CArchiveException::badSchema);
    return addRead(pClass, schema, nullptr);
}

DWORD CArchive::addRead(CRuntimeClass* pClass, UINT schema, CObject* object) {
    const DWORD number = numbers().addRead({pClass, schema, object});
    if (number == 0) throwBad(CArchiveException::badIndex);
    return number;
}

CObject* CArchive::ReadObject(const CRuntimeClass* wanted) {
    UINT schema = 0;
    DWORD tag = 0;
    const CRuntimeClass* pClass = ReadClass(wanted, &schema, &tag);
    if (pClass != nullptr) return readNewObject(pClass, schema);
    if (tag == kNullTag) return nullptr;

    const ObjectNumbers::Read* known = numbers().find(tag);
    if (known == nullptr || known->object == nullptr) throwBad(CArchiveException::badIndex);
    if (wanted != nullptr && !known->object->IsKindOf(wanted)) {
        throwBad(CArchiveException::badClass);
    }
    return known->object;
}

CObject* CArchive::readNewObject(const CRuntimeClass* pClass, UINT schema) {
    if (m_depth == kDeepestNesting) throwBad(CArchiveException::badIndex);
    std::unique_ptr<CObject> object(pClass->CreateObject());
    if (object == nullptr) AfxThrowMemoryException();
    const DWORD number = addRead(nullptr, 0, object.get());

    const UINT callersSchema = std::exchange(m_objectSchema, schema);
    ++m_depth;
    try {
        object->Serialize(*this);
    } catch (...) {
        numbers().forgetFrom(number);
        --m_depth;
        m_objectSchema = callersSchema;
        throw;
    }
    --m_depth;
    m_objectSchema = callersSchema;
    return object.release();
}

UINT CArchive::GetObjectSchema() {
    return std::exchange(m_objectSchema, static_cast<UINT>(-1));
}

CArchive& operator<<(CArchive& ar, const CObject* object) {
    ar.WriteObject(object);
    return ar;
}

CArchive& operator>>(CArchive& ar, CObject*& object) {
    object = ar.ReadObject(nullptr);
    return ar;
}
