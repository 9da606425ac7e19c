// The requests about users and their ports.
#include "NyServer/client/ClientExchange.h"

void NySeClientApp::getAllUser(NySeUserPtrArray& users) {
    if (request(NySe::actionGetAllUser)) receiveTable(users);
}

int NySeClientApp::getPortClient(NySeUser& user) {
    if (!request(NySe::actionGetPortClient, user)) return 0;
    const std::shared_ptr<NySeUser> completed = receiveRecord<NySeUser>();
    if (completed == nullptr) return 0;
    user.vCopyFrom(*completed);
    return user.getPort();
}

int NySeClientApp::getAnotherPort() {
    return request(NySe::actionGetAnotherPort) ? receiveScalar<LONG>(-1) : -1;
}

bool NySeClientApp::updateUserName(const CString& name) {
    return request(NySe::actionUpdateUserName, name) && receiveScalar<BYTE>(0) != 0;
}

void NySeClientApp::sendUserData(NySeUser& user, CObject& object) {
    const auto schema = static_cast<NySe::SchemaType>(user.getSchema());
    requestUnder(schema, NySe::actionSendUserData, user, object);
}

void NySeClientApp::sendAllUserData(CObject& object) {
    request(NySe::actionSendAllUserData, object);
}
