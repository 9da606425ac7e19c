#include "afxcoll.h"

IMPLEMENT_SERIAL(CObArray, CObject, 0)

namespace {

// The objects of a large table are not in the processor's caches: it is told of each a few objects
// beforehand. Most records lie within two lines.
constexpr INT_PTR kAhead = 8;
constexpr size_t kLine = 64;

void fetchEarly(const CObject* object) {
    __builtin_prefetch(object);
    // Not by adding to a pointer, which may be null.
    __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(object) + kLine));
}

}  // namespace

void CObArray::Serialize(CArchive& ar) {
    if (ar.IsLoading()) {
        afxLoadElements(ar, *this, static_cast<CObject*>(nullptr));
        return;
    }
    ar.WriteCount(static_cast<size_t>(GetSize()));
    for (INT_PTR i = 0; i < GetSize(); ++i) {
        if (i + kAhead < GetSize()) fetchEarly(GetData()[i + kAhead]);
        ar.WriteObject(GetData()[i]);
    }
}
