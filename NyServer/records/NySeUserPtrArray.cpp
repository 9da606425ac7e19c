#include "NyServer/records/NySeUserPtrArray.h"

#include "NyServer/records/NySeSessionLockPtrArray.h"

void NySeUserPtrArray::Serialize(CArchive& ar) {
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeUser));
}

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

void NySeUserPtrArray::addFromSessionArray(NySeUserPtrArray& users,
                                           NySeSessionLockPtrArray& sessions) {
    for (INT_PTR i = 0; i < sessions.GetSize(); ++i) {
        NySeUser* user = users.findBySessionNumber(sessions.GetAt(i)->getSessionNumber());
        if (user != nullptr) add(user);
    }
}
