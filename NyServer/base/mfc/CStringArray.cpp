#include "afxcoll.h"

IMPLEMENT_SERIAL(CStringArray, CObject, 0)

void CStringArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, CString());
        return;
    }
    ar.WriteCount(static_cast<size_t>(GetSize()));
    for (INT_PTR i = 0; i < GetSize(); ++i) ar << GetAt(i);
}
