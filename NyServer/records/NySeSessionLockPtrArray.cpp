#include "NyServer/records/NySeSessionLockPtrArray.h"

void NySeSessionLockPtrArray::Serialize(CArchive& ar) {
    if (ar.IsStoring()) return NySe::storeTable<NySeSessionLock>(*this, ar);
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeSessionLock));
}
