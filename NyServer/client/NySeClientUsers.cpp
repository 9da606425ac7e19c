// The requests about users and their ports.
#include "NyServer/client/ClientExchange.h"

void NySeClientApp::getAllUser(NySeUserPtrArray& users) {
    if (request(NySe::actionGetAllUser)) receiveTable(users);
}

int NySeClientApp::getPortClient(NySeUser& user) {
    if (!request(NySe::actionGetPortClient, user)) return 0;
    int port = 0;
    NySe::succeeds([&] {
        if (const auto completed = receiveRecord<NySeUser>()) {
            user.vCopyFrom(*completed);
            port = user.getPort();
        }
    });
    return port;
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
