// nyctl: the central server and the online service from the command line.
#include "apps/common/CommandLine.h"
#include "apps/common/RunProgram.h"
#include "apps/nyctl/Commands.h"
#include "apps/nyctl/UnknownCommand.h"

namespace apps::nyctl {
namespace {

int run(int count, const char* const* words) {
    Options options;
    Session session(options);
    const Output output(options);
    ExitStatus status = exitYes;

    CLI::App app("Sends requests to a central server and to the online service.", "nyctl");
    app.require_subcommand(1);
    addServerOption(app, options)->envname("NYCTL_SERVER");
    addUserOption(app, options)->envname("NYCTL_USER")->each([&](const std::string&) {
        options.isUserChosen = true;
    });
    app.add_flag("--json", options.json, "Print one JSON object per line instead of tables");
    addCommands(app, session, output, status);
    CLI::App* const shell = app.add_subcommand(
        "shell", "Run commands from standard input, one per line, on one connection");
    shell->footer("Example: printf 'register\\nusers\\n' | nyctl --user Anna shell");
    shell->callback([&] {
        options.isShell = true;
        status = runShell(session, output);
    });
    app.footer(
        "Example: nyctl --server 127.0.0.1:40123 --user Anna lock part/42 --mode 0x18\n"
        "Exit status: 0 yes or done, 1 no or refused, 2 wrong usage, 3 no connection or no "
        "reply, 4 timed out; hold exits with the status of its command.");

    try {
        parseCommandLine(app, count, words);
    } catch (const CLI::ParseError& error) {
        return reportUsage(app, error);
    }
    return status;
}

}  // namespace
}  // namespace apps::nyctl

int main(int count, char** words) {
    using namespace apps::nyctl;
    return apps::runProgram([&] { return run(count, words); }, Output::complain, exitNoReply);
}
