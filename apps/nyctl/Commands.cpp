#include "apps/nyctl/Commands.h"

#include <iostream>
#include <string_view>

#include "apps/nyctl/Doctor.h"
#include "apps/nyctl/UnknownCommand.h"

namespace apps::nyctl {

namespace {

// Makes its own connections, so that it can report why one fails.
const std::vector<Command> kDoctor = {
    {"doctor",
     "Check in seven steps what a host needs from the server, and explain the first failure",
     "doctor", &defineDoctor}};

enum class Needs { server, nothing };

class CommandAdder {
  public:
    CommandAdder(Session& session, const Output& output, ExitStatus& status)
        : m_session(session), m_output(output), m_status(status) {}

    void add(CLI::App& app, const std::vector<Command>& family, Needs needs) const {
        for (const Command& row : family) add(app, row, needs);
    }

  private:
    void add(CLI::App& app, const Command& row, Needs needs) const {
        CLI::App* const command = app.add_subcommand(row.name, row.help);
        command->footer(std::string("Example: nyctl ") + row.example);
        command->callback([adder = *this, run = row.define(*command), needs] {
            Context context{adder.m_session, adder.m_output};
            const bool isReady = needs == Needs::nothing || adder.m_session.open();
            adder.m_status = isReady ? run(context) : noReply(context);
        });
    }

    Session& m_session;
    const Output& m_output;
    ExitStatus& m_status;
};

constexpr std::string_view kEcho = "echo ";

ExitStatus runLine(const std::string& line, Session& session, const Output& output) {
    ExitStatus status = exitYes;
    CLI::App app("One command of the shell", "");
    app.require_subcommand(1);
    addCommands(app, session, output, status);
    try {
        app.parse(line);
    } catch (const CLI::ParseError& error) {
        return reportUsage(app, error);
    }
    return status;
}

}  // namespace

void addCommands(CLI::App& app, Session& session, const Output& output, ExitStatus& status) {
    const CommandAdder adder(session, output, status);
    for (const auto* family :
         {&kServerCommands, &kUserCommands, &kLockCommands, &kConnectionCommands}) {
        adder.add(app, *family, Needs::server);
    }
    adder.add(app, kDoctor, Needs::nothing);
    CLI::App* const online =
        app.add_subcommand("online", "Query the vendor's online service, not the central server");
    online->require_subcommand(1);
    online->footer("Example: nyctl online ping");
    adder.add(*online, kOnlineCommands, Needs::nothing);
}

ExitStatus runShell(Session& session, const Output& output) {
    ExitStatus worst = exitYes;
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line.front() == '#') continue;
        if (line == "exit") break;
        if (line.rfind(kEcho, 0) == 0) {
            std::cout << line.substr(kEcho.size()) << std::endl;
            continue;
        }
        const ExitStatus status = runLine(line, session, output);
        if (status != exitYes) worst = status;
    }
    return worst;
}

}  // namespace apps::nyctl
