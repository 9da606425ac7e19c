#include "QoArraySerial2.h"

IMPLEMENT_DYNAMIC(QoArraySerial2, CObArray)

namespace {

// Gives the archive another object schema until the scope ends, however it ends.
class ObjectSchemaScope {
  public:
    ObjectSchemaScope(CArchive& ar, UINT schema) : m_archive(ar), m_callers(ar.GetObjectSchema()) {
        ar.SetObjectSchema(schema);
    }
    ~ObjectSchemaScope() { m_archive.SetObjectSchema(m_callers); }
    ObjectSchemaScope(const ObjectSchemaScope&) = delete;
    ObjectSchemaScope& operator=(const ObjectSchemaScope&) = delete;

  private:
    CArchive& m_archive;
    const UINT m_callers;
};

}  // namespace

void QoArraySerial2::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        CObArray::Serialize(ar);
        return;
    }
    RemoveAll();
    try {
        for (size_t left = ar.ReadCount(); left > 0; --left) {
            std::unique_ptr<QoObject2> element = readElement(ar);
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

std::unique_ptr<QoObject2> QoArraySerial2::readElement(CArchive& ar) const {
    UINT schema = 0;
    DWORD tag = 0;
    const CRuntimeClass* pClass = ar.ReadClass(nullptr, &schema, &tag);
    if (pClass == nullptr && tag != 0) {
        AfxThrowArchiveException(CArchiveException::badIndex, ar.m_strFileName);
    }
    const CRuntimeClass* wanted =
        m_elementClass != nullptr ? m_elementClass : RUNTIME_CLASS(QoObject2);
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
