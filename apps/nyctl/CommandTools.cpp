#include "apps/nyctl/CommandTools.h"

#include <cstdio>

namespace apps::nyctl {

ExitStatus noReply(Context& context) {
    Output::complain("no reply from " + context.session.server());
    context.session.close();
    return exitNoReply;
}

ExitStatus ifAlive(Context& context, ExitStatus status) {
    return context.client().isAlive() ? status : noReply(context);
}

ExitStatus ensureRegistered(Context& context) {
    return context.session.registerUser() ? exitYes : ifAlive(context, exitNo);
}

std::string shareModeDigits(unsigned mode) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%02X", mode);
    return digits;
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

Record describe(const NySeConnection& connection) {
    return {{"id", connection.getId()},
            {"connection", toUtf8(connection.getStrConnection())},
            {"opens", connection.getRefCount()}};
}

void printUsers(Context& context, const NySeUserPtrArray& users) {
    std::vector<Record> rows;
    for (INT_PTR i = 0; i < users.GetSize(); ++i) rows.push_back(describe(*users[i]));
    context.output.table({"user", "session", "port", "host", "computer", "schema", "soft_type"},
                         rows);
}

bool findUser(Context& context, const std::string& name, NySeUser& user) {
    NySeUserPtrArray users;
    context.client().getAllUser(users);
    const NySeUser* const found = users.findByUserName(fromUtf8(name));
    if (found != nullptr) user = *found;
    return found != nullptr;
}

}  // namespace apps::nyctl
