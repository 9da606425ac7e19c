#include "NyServer/records/NySeUserPtrArray.h"

NySeUser* NySeUserPtrArray::findBySessionNumber(int sessionNumber) const {
    NySeUser probe;
    probe.setSessionNumber(sessionNumber);
    return NySeUser::cast(find(&probe, 2));
}

NySeUser* NySeUserPtrArray::findByUserName(const CString& userName) const {
    NySeUser probe;
    probe.setStrUserName(userName);
    return NySeUser::cast(find(&probe, 1));
}
