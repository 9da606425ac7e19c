// The parts of the command line that the programs share.
#pragma once

#include <algorithm>
#include <CLI/CLI.hpp>

#include "apps/common/Program.h"
#include "apps/common/Session.h"

namespace apps {

// Add the options for the account.
inline CLI::Option* addServerOption(CLI::App& app, Account& account) {
    return app.add_option("--server", account.server, "HOST:PORT of the central server")
        ->check([](const std::string& server) {
            return parseServer(server) ? std::string() : server + " is not HOST:PORT";
        })
        ->capture_default_str();
}
inline CLI::Option* addUserOption(CLI::App& app, Account& account) {
    account.user = loginName();
    return app.add_option("--user", account.user, "The name to register under")
        ->capture_default_str();
}

// Parses the arguments of this program, which are those of main. Throws CLI::ParseError;
// CLI::CallForHelp is derived from it.
inline void parseCommandLine(CLI::App& app, int count, const char* const* words) {
    std::vector<std::string> arguments = commandLineArguments(count, words);
    std::reverse(arguments.begin(), arguments.end());  // the order that the parser expects
    app.parse(arguments);
}

}  // namespace apps
