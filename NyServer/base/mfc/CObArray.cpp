#include "afxcoll.h"

IMPLEMENT_SERIAL(CObArray, CObject, 0)

void CObArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, static_cast<CObject*>(nullptr));
    } else {
        ar.WriteObjects(GetData(), static_cast<size_t>(GetSize()));
    }
}
