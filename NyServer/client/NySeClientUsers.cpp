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
