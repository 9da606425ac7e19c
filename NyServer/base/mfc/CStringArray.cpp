#include "afxcoll.h"

IMPLEMENT_SERIAL(CStringArray, CObject, 0)

void CStringArray::Serialize(CArchive& ar) {
    afxSerializeElements(ar, *this, CString());
}
