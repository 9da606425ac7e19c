#include "afxcoll.h"

IMPLEMENT_SERIAL(CObArray, CObject, 0)

void CObArray::Serialize(CArchive& ar) {
    afxSerializeElements(ar, *this, static_cast<CObject*>(nullptr));
}
