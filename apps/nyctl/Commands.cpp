#include "apps/nyctl/Commands.h"

#include "apps/common/Utf8.h"

namespace {

struct Context {
    Session& session;
    const Output& output;
};

ExitStatus noAnswer(Context& context) {
    Output::complain("no answer from " + context.session.server());
    return exitNoAnswer;
}

ExitStatus ping(Context& context) {
    NySeClientApp& client = context.session.client();
    const bool alive = client.isAlive();
    if (!alive && !context.session.isOpen()) return noAnswer(context);
    context.output.record({{"alive", alive},
                           {"version", client.getVersion()},
                           {"schema", static_cast<unsigned>(client.getSchemaType())}});
    return alive ? exitYes : exitNo;
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

ExitStatus registerUser(Context& context) {
    if (!context.session.registerUser()) {
        return context.session.isOpen() ? exitNo : noAnswer(context);
    }
    context.output.record(describe(context.session.user()));
    return exitYes;
}

ExitStatus users(Context& context) {
    NySeUserPtrArray table;
    context.session.client().getAllUser(table);
    if (table.GetSize() == 0 && !context.session.isOpen()) return noAnswer(context);
    std::vector<Record> rows;
    for (INT_PTR i = 0; i < table.GetSize(); ++i) rows.push_back(describe(*table[i]));
    context.output.table({"user", "session", "port", "host", "computer", "schema", "soft_type"},
                         rows);
    return exitYes;
}

// One row a command.
struct Command {
    const char* name;
    const char* help;
    ExitStatus (*run)(Context&);
};

constexpr Command kCommands[] = {
    {"ping", "Whether the server is alive, its version and the schema agreed", &ping},
    {"register", "Enter the user at the server and show what it gave", &registerUser},
    {"users", "The users that the server knows", &users},
};

}  // namespace

void addCommands(CLI::App& app, Session& session, const Output& output, ExitStatus& status) {
    for (const Command& command : kCommands) {
        app.add_subcommand(command.name, command.help)
            ->callback([&session, &output, &status, run = command.run] {
                Context context{session, output};
                status = session.open() ? run(context) : noAnswer(context);
            });
    }
}
