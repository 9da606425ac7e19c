#include "NyServer/records/NySeSessionLockPtrArray.h"

void NySeSessionLockPtrArray::Serialize(CArchive& ar) {
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeSessionLock));
}
