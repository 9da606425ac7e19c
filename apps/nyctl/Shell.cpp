#include "apps/nyctl/Shell.h"

#include <iostream>
#include <string_view>

namespace apps::nyctl {

namespace {

constexpr std::string_view kEcho = "echo ";

ExitStatus runLine(const std::string& line, Session& session, const Output& output) {
    ExitStatus status = exitYes;
    CLI::App app("One command of the shell", "");
    app.require_subcommand(1);
    addCommands(app, session, output, status);
    try {
        app.parse(line);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? exitYes : exitUsage;
    }
    return status;
}

}  // namespace

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
