#include "NyServer/records/NySeUserPtrArray.h"

#include "NyServer/records/NySeSessionLockPtrArray.h"
#include "NyServer/records/TextSearch.h"

namespace {

constexpr NySe::TextKey<NySeUser> kUserName = {&NySeUser::getStrUserName, &NySeUser::setStrUserName,
                                               1};

}  // namespace

void NySeUserPtrArray::Serialize(CArchive& ar) {
    NySe::serializeTable(*this, ar, RUNTIME_CLASS(NySeUser));
}

NySeUser* NySeUserPtrArray::findBySessionNumber(int sessionNumber) const {
    NySeUser probe;
    probe.setSessionNumber(sessionNumber);
    return NySeUser::cast(find(&probe, 2));
}

NySeUser* NySeUserPtrArray::findByUserName(const CString& userName) const {
    return NySe::findText<kUserName>(*this, userName);
}

void NySeUserPtrArray::addFromSessionArray(NySeUserPtrArray& users,
                                           NySeSessionLockPtrArray& sessions) {
    for (INT_PTR i = 0; i < sessions.GetSize(); ++i) {
        NySeUser* user = users.findBySessionNumber(sessions.GetAt(i)->getSessionNumber());
        if (user != nullptr) add(user);
    }
}
