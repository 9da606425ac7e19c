#include "apps/central/Requests.h"

namespace requests {

namespace {

bool getLock(const Request& request) {
    request.reply.message(request.server.tables().locks());
    return true;
}

bool lock(const Request& request) {
    CString name;
    unsigned int mode = 0;
    if (!readPayload(request.payload, name, mode)) return false;
    const bool granted = request.server.tables().lock(request.session, name, mode);
    request.reply.scalar<BYTE>(granted ? 1 : 0);
    return true;
}

bool unLock(const Request& request) {
    CString name;
    if (!readPayload(request.payload, name)) return false;
    request.server.tables().unlock(request.session, name);
    return true;
}

bool isLockBy(const Request& request) {
    CString name;
    LONG zero = 0;
    if (!readPayload(request.payload, name, zero)) return false;
    const std::optional<std::string> holders = request.server.tables().lockHolders(name);
    request.reply.scalar<BYTE>(holders ? 1 : 0);
    if (holders) request.reply.message(*holders);
    return true;
}

}  // namespace

const std::vector<Row> kLockRequests = {
    {NySe::actionGetLock, &getLock, &nothing},
    {NySe::actionLock, &lock, &zeroByte},
    {NySe::actionUnLock, &unLock, &nothing},
    {NySe::actionIsLockBy, &isLockBy, &zeroByte},
};

}  // namespace requests
