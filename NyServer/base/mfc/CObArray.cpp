#include "afxcoll.h"
#include "AfxFetchEarly.h"

IMPLEMENT_SERIAL(CObArray, CObject, 0)

namespace {

// The objects of a large table are not in the processor's caches: it is told of each a few objects
// beforehand.
constexpr INT_PTR kAhead = 8;

}  // namespace

void CObArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, static_cast<CObject*>(nullptr));
        return;
    }
    ar.WriteCount(static_cast<size_t>(GetSize()));
    for (INT_PTR i = 0; i < GetSize(); ++i) {
        if (i + kAhead < GetSize()) afxFetchEarly(GetData()[i + kAhead]);
        ar.WriteObject(GetData()[i]);
    }
}
