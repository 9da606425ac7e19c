// The commands about connections.
#include "apps/nyctl/CommandTools.h"
#include "NyServer/records/NySeConnectionArray.h"

namespace apps::nyctl {

namespace {

Run defineOpen(CLI::App& command) {
    return
        [name = argument<std::string>(command, "NAME", "The connection string")](Context& context) {
            if (const ExitStatus status = ensureRegistered(context); status != exitYes)
                return status;
            const long id = context.client().openConnection(fromUtf8(*name));
            if (id < 0) return ifAlive(context, exitNo);
            context.output.record({{"connection", *name}, {"id", id}});
            return exitYes;
        };
}

Run defineClose(CLI::App& command) {
    return [id = argument<LONG>(command, "ID", "The connection's id")](Context& context) {
        context.client().closeConnection(*id);
        return ifAlive(context, exitYes);
    };
}

Run defineOpeners(CLI::App& command) {
    return [id = argument<LONG>(command, "ID", "The connection's id")](Context& context) {
        NySeUserPtrArray users;
        context.client().isOpenConnectionBy(*id, users);
        const ExitStatus status = users.GetSize() > 0 ? exitYes : ifAlive(context, exitNo);
        if (status != exitNoReply) printUsers(context, users);
        return status;
    };
}

Run defineConnections(CLI::App&) {
    return [](Context& context) {
        NySeConnectionArray connections;
        context.client().getConnection(connections);
        const ExitStatus status = connections.GetSize() > 0 ? exitYes : ifAlive(context, exitYes);
        if (status != exitYes) return status;
        std::vector<Record> rows;
        for (INT_PTR i = 0; i < connections.GetSize(); ++i)
            rows.push_back(describe(*connections[i]));
        context.output.table({"id", "connection", "opens"}, rows);
        return exitYes;
    };
}

}  // namespace

const std::vector<Command> kConnectionCommands = {
    {"open", "Open a connection", "open 'Server=a;Db=b'", &defineOpen},
    {"close", "Close a connection once", "close 0", &defineClose},
    {"openers", "List the users who have a connection open", "openers 0", &defineOpeners},
    {"connections", "List all connections", "connections", &defineConnections},
};

}  // namespace apps::nyctl
