#include "apps/central/Requests.h"

#include <algorithm>
#include <iterator>

namespace {

using Handler = bool (*)(const Request&);
using Failure = void (*)(Reply&);

void nothing(Reply&) {}
void zeroByte(Reply& reply) {
    reply.scalar<BYTE>(0);
}
void minusOne(Reply& reply) {
    reply.scalar<LONG>(-1);
}
void emptyMessage(Reply& reply) {
    reply.message({});
}
void currentSchema(Reply& reply) {
    reply.scalar<LONG>(NySe::schema2015);
}

struct Row {
    NySe::ActionType action;
    Handler handler;
    Failure failure;  // answers a payload that makes no sense
};

constexpr Row kRequests[] = {
    {NySe::actionIsAlive, &requests::isAlive, &nothing},
    {NySe::actionGetConnection, &requests::getConnection, &nothing},
    {NySe::actionOpenConnection, &requests::openConnection, &minusOne},
    {NySe::actionCloseConnection, &requests::closeConnection, &nothing},
    {NySe::actionIsOpenConnectionBy, &requests::isOpenConnectionBy, &emptyMessage},
    {NySe::actionGetLock, &requests::getLock, &nothing},
    {NySe::actionLock, &requests::lock, &zeroByte},
    {NySe::actionUnLock, &requests::unLock, &nothing},
    {NySe::actionIsLockBy, &requests::isLockBy, &zeroByte},
    {NySe::actionGetAllUser, &requests::getAllUser, &nothing},
    {NySe::actionGetAnotherPort, &requests::getAnotherPort, &nothing},
    {NySe::actionSendConnectionData, &requests::sendConnectionData, &nothing},
    {NySe::actionSendUserData, &requests::sendUserData, &nothing},
    {NySe::actionSendAllUserData, &requests::sendAllUserData, &nothing},
    {NySe::actionUpdateUserName, &requests::updateUserName, &zeroByte},
    {NySe::actionShutDownServer, &requests::shutDownServer, &nothing},
    {NySe::actionGetCurrentTime, &requests::getCurrentTime, &nothing},
    {NySe::actionVerifyCoherancy, &requests::verifyCoherancy, &nothing},
    {NySe::actionGetMachineIdentifiant, &requests::getMachineIdentifiant, &nothing},
    {NySe::actionGetEventListFromEventViewer, &requests::getEventListFromEventViewer,
     &emptyMessage},
    {NySe::actionGetPortClient, &requests::getPortClient, &emptyMessage},
    {NySe::actionInitializeSchema, &requests::initializeSchema, &currentSchema},
    {NySe::actionGetVersion, &requests::getVersion, &nothing},
};

}  // namespace

void answerRequest(LONG action, const Request& request) {
    const auto row = std::find_if(std::begin(kRequests), std::end(kRequests),
                                  [action](const Row& one) { return one.action == action; });
    if (row == std::end(kRequests) || row->handler(request)) return;
    request.server.events().add("session " + std::to_string(request.session) +
                                ": the payload of action " + std::to_string(action) +
                                " makes no sense");
    row->failure(request.reply);
}

std::string requests::restOf(CMemFile& payload) {
    std::string rest(static_cast<size_t>(payload.GetLength() - payload.GetPosition()), '\0');
    payload.Read(rest.data(), static_cast<UINT>(rest.size()));
    return rest;
}
