#include <memory>

#include "apps/central/Requests.h"
#include "apps/central/UserReading.h"
#include "apps/common/Utf8.h"

using namespace apps;

namespace requests {

namespace {

void note(const Request& request, const std::string& what, const CString& name) {
    request.server.events().add("session " + std::to_string(request.session) + what + toUtf8(name));
}

bool getAllUser(const Request& request) {
    request.reply.message(archived(request.server.tables().users()));
    return true;
}

bool getPortClient(const Request& request) {
    const std::unique_ptr<NySeUser> user = readUser(request.payload);
    if (user == nullptr) return false;
    const auto completed = request.server.tables().registerUser(*user, request.session);
    note(request, completed ? " registers user " : " cannot register user ",
         user->getStrUserName());
    request.reply.message(completed ? archived(*completed) : std::string());
    return true;
}

bool getAnotherPort(const Request& request) {
    request.reply.scalar(request.server.tables().anotherPort(request.session));
    return true;
}

bool updateUserName(const Request& request) {
    CString name;
    if (!readPayload(request.payload, name)) return false;
    const bool renamed = request.server.tables().renameUser(request.session, name);
    if (renamed) note(request, " renames its user ", name);
    request.reply.scalar<BYTE>(renamed ? 1 : 0);
    return true;
}

bool sendUserData(const Request& request) {
    const std::unique_ptr<NySeUser> receiver = readUser(request.payload);
    if (receiver == nullptr) return false;
    const std::string object = restOf(request.payload);
    if (object.empty()) return false;
    request.server.tables().sendToUser(request.session, receiver->getSessionNumber(), object);
    return true;
}

bool sendAllUserData(const Request& request) {
    const std::string object = restOf(request.payload);
    if (object.empty()) return false;
    request.server.tables().sendToAll(request.session, object);
    return true;
}

}  // namespace

const std::vector<Row> kUserRequests = {
    {NySe::actionGetAllUser, &getAllUser, &nothing},
    {NySe::actionGetPortClient, &getPortClient, &emptyMessage},
    {NySe::actionGetAnotherPort, &getAnotherPort, &nothing},
    {NySe::actionUpdateUserName, &updateUserName, &zeroByte},
    {NySe::actionSendUserData, &sendUserData, &nothing},
    {NySe::actionSendAllUserData, &sendAllUserData, &nothing},
};

}  // namespace requests
