// The commands about users and what is sent to them.
#include "apps/nyctl/CommandTools.h"
#include "apps/nyctl/Watch.h"
#include "NyServer/records/NySeMessage.h"

namespace apps::nyctl {

namespace {

NySeMessage messageOf(const std::string& text) {
    NySeMessage message;
    message.setStrMessage(fromUtf8(text));
    return message;
}

Run defineRegister(CLI::App&) {
    return [](Context& context) {
        const ExitStatus status = ensureRegistered(context);
        if (status == exitYes) context.output.record(describe(context.session.user()));
        return status;
    };
}

Run defineUsers(CLI::App&) {
    return [](Context& context) {
        NySeUserPtrArray users;
        context.client().getAllUser(users);
        // An empty table may also mean that no reply arrived.
        const ExitStatus status = users.GetSize() > 0 ? exitYes : ifAlive(context, exitYes);
        if (status == exitYes) printUsers(context, users);
        return status;
    };
}

Run definePort(CLI::App&) {
    return [](Context& context) {
        const int port = context.client().getAnotherPort();
        if (port <= 0) return ifAlive(context, exitNo);
        context.output.record({{"port", port}});
        return exitYes;
    };
}

Run defineRename(CLI::App& command) {
    return [name = argument<std::string>(command, "NAME", "The new name")](Context& context) {
        if (const ExitStatus status = ensureRegistered(context); status != exitYes) return status;
        const bool isRenamed = context.client().updateUserName(fromUtf8(*name));
        return isRenamed ? exitYes : ifAlive(context, exitNo);
    };
}

Run defineSendUser(CLI::App& command) {
    return [name = argument<std::string>(command, "USER", "The receiver's name"),
            text = argument<std::string>(command, "TEXT", "The text")](Context& context) {
        NySeUser user;
        if (!findUser(context, *name, user)) return ifAlive(context, exitNo);
        NySeMessage message = messageOf(*text);
        context.client().sendUserData(user, message);
        return ifAlive(context, exitYes);
    };
}

Run defineSendAll(CLI::App& command) {
    return [text = argument<std::string>(command, "TEXT", "The text")](Context& context) {
        NySeMessage message = messageOf(*text);
        context.client().sendAllUserData(message);
        return ifAlive(context, exitYes);
    };
}

Run defineSendConnection(CLI::App& command) {
    return [id = argument<int>(command, "ID", "The connection whose users receive it"),
            number = argument<int>(command, "N", "A number for the application"),
            text = argument<std::string>(command, "TEXT", "The text")](Context& context) {
        NySeMessage message = messageOf(*text);
        context.client().sendConnectionData(*id, *number, message);
        return ifAlive(context, exitYes);
    };
}

}  // namespace

const std::vector<Command> kUserCommands = {
    {"register", "Register the user and show its record", "register", &defineRegister},
    {"users", "List the registered users", "users", &defineUsers},
    {"port", "Request another port for the user's listener", "port", &definePort},
    {"rename", "Rename the user", "rename Anna", &defineRename},
    {"send-connection", "Send a text to the users of a connection",
     "send-connection 0 1 'model saved'", &defineSendConnection},
    {"send-user", "Send a text to one user", "send-user Bob 'are you there?'", &defineSendUser},
    {"send-all", "Send a text to all users", "send-all 'back in five minutes'", &defineSendAll},
    {"watch", "Register, and show each notification as it arrives", "watch --count 3 --timeout 60",
     &defineWatch},
};

}  // namespace apps::nyctl
