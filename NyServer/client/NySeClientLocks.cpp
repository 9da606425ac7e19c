// The requests about locks.
#include "NyServer/client/ClientExchange.h"

namespace {

// The status after which the server sends the lock's users.
constexpr BYTE kUsersFollow = 1;
// The second field of isLockBy.
constexpr LONG kReserved = 0;

}  // namespace

bool NySeClientApp::lock(const CString& name, unsigned mode) {
    if (!request(NySe::actionLock, name, static_cast<LONG>(mode))) return false;
    return receiveScalar<BYTE>(0) != 0;
}

bool NySeClientApp::unLock(const CString& name) {
    return request(NySe::actionUnLock, name);
}

bool NySeClientApp::isLockBy(const CString& name, NySeUserPtrArray& users) {
    if (!request(NySe::actionIsLockBy, name, kReserved)) return false;
    const BYTE status = receiveScalar<BYTE>(0);
    if (status == kUsersFollow) receiveTable(users);
    return status != 0;
}

void NySeClientApp::getLock(NySeLockArray& locks) {
    if (request(NySe::actionGetLock)) receiveTable(locks);
}
