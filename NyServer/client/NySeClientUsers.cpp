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
