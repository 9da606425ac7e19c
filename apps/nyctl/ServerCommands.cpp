// The commands about the server itself.
#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

namespace {

Run definePing(CLI::App&) {
    return [](Context& context) {
        NySeClientApp& client = context.client();
        const bool alive = client.isAlive();
        const double version = client.getVersion();
        if (!alive && version < 0) return noReply(context);
        context.output.record({{"alive", alive},
                               {"version", version},
                               {"schema", static_cast<unsigned>(client.getSchemaType())}});
        return alive ? exitYes : exitNo;
    };
}

Run defineTime(CLI::App&) {
    return [](Context& context) {
        const long seconds = context.client().getCurrentTime();
        if (seconds == 0) return noReply(context);
        context.output.record({{"time", seconds}});
        return exitYes;
    };
}

Run defineMachine(CLI::App&) {
    return [](Context& context) {
        const CString identity = context.client().getMachineIdentifiant();
        const ExitStatus status = identity.IsEmpty() ? ifAlive(context, exitYes) : exitYes;
        if (status == exitYes) context.output.record({{"machine", toUtf8(identity)}});
        return status;
    };
}

Run defineInfo(CLI::App&) {
    return [](Context& context) {
        CStringArray report;
        context.client().getServerInformation(report);
        std::vector<std::string> lines;
        for (INT_PTR i = 0; i < report.GetSize(); ++i) lines.push_back(toUtf8(report[i]));
        const ExitStatus status = ifAlive(context, exitYes);
        if (status == exitYes) context.output.lines("information", lines);
        return status;
    };
}

Run defineVerify(CLI::App&) {
    return [](Context& context) {
        context.client().verifyCoherancy();
        return ifAlive(context, exitYes);
    };
}

Run defineEvents(CLI::App& command) {
    return [count = argument<int>(command, "N", "The maximum number of events")](Context& context) {
        const std::string events = toUtf8(context.client().getEventListFromEventViewer(*count));
        const ExitStatus status = events.empty() ? ifAlive(context, exitYes) : exitYes;
        if (status == exitYes) context.output.lines("event", Output::split(events));
        return status;
    };
}

Run defineShutdown(CLI::App&) {
    return [](Context& context) {
        // After the request the server no longer replies.
        const ExitStatus status = ifAlive(context, exitYes);
        if (status == exitYes) context.client().shutDownServer();
        return status;
    };
}

}  // namespace

const std::vector<Command> kServerCommands = {
    {"ping", "Show whether the server is alive, its version and the agreed schema", "ping",
     &definePing},
    {"time", "Show the server's time in seconds since 1970", "time", &defineTime},
    {"machine", "Show the identity of the server's machine", "machine", &defineMachine},
    {"info", "Show information about the server", "info", &defineInfo},
    {"verify", "Have the server check its tables", "verify", &defineVerify},
    {"events", "Show the server's last events, newest first", "events 10", &defineEvents},
    {"shutdown", "Stop the server", "shutdown", &defineShutdown},
};

}  // namespace apps::nyctl
