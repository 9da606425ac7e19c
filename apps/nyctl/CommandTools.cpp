#include "apps/nyctl/CommandTools.h"

ExitStatus noAnswer(Context& context) {
    Output::complain("no answer from " + context.session.server());
    return exitNoAnswer;
}

ExitStatus ifAnswered(Context& context, ExitStatus status) {
    return context.client().isAlive() ? status : noAnswer(context);
}

ExitStatus ensureRegistered(Context& context) {
    return context.session.registerUser() ? exitYes : ifAnswered(context, exitNo);
}

Record describe(const NySeUser& user) {
    return {{"user", toUtf8(user.getStrUserName())},
            {"session", user.getSessionNumber()},
            {"port", user.getPort()},
            {"host", toUtf8(user.getStrHostName())},
            {"computer", toUtf8(user.getStrComputerName())},
            {"schema", user.getSchema()},
            {"soft_type", user.getSoftType()}};
}

void printUsers(Context& context, const NySeUserPtrArray& users) {
    std::vector<Record> rows;
    for (INT_PTR i = 0; i < users.GetSize(); ++i) rows.push_back(describe(*users[i]));
    context.output.table({"user", "session", "port", "host", "computer", "schema", "soft_type"},
                         rows);
}

namespace {

bool copyFound(const NySeUser* found, NySeUser& user) {
    if (found != nullptr) user = *found;
    return found != nullptr;
}

}  // namespace

bool findUser(Context& context, long sessionNumber, NySeUser& user) {
    NySeUserPtrArray users;
    context.client().getAllUser(users);
    return copyFound(users.findBySessionNumber(sessionNumber), user);
}

bool findUser(Context& context, const std::string& name, NySeUser& user) {
    NySeUserPtrArray users;
    context.client().getAllUser(users);
    return copyFound(users.findByUserName(fromUtf8(name)), user);
}
