#include "afxcoll.h"

IMPLEMENT_SERIAL(CObArray, CObject, 0)

void CObArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, static_cast<CObject*>(nullptr));
    } else {
        ar.WriteObjects(GetData(), static_cast<size_t>(GetSize()));
    }
}

IMPLEMENT_SERIAL(CStringArray, CObject, 0)

void CStringArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, CString());
        return;
    }
    ar.WriteCount(static_cast<size_t>(GetSize()));
    for (INT_PTR i = 0; i < GetSize(); ++i) ar << GetAt(i);
}
