// What the commands of nyctl are made of. Internal to the programs.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "apps/common/Session.h"
#include "apps/common/Utf8.h"
#include "apps/nyctl/ExitStatus.h"
#include "apps/nyctl/Output.h"

namespace apps::nyctl {

struct Context {
    Session& session;
    const Output& output;

    NySeClientApp& client() { return session.client(); }
};

using Run = std::function<ExitStatus(Context&)>;

// One row a command. define: adds its arguments to `command` and returns what runs with them.
struct Command {
    const char* name;
    const char* help;
    const char* example;
    Run (*define)(CLI::App& command);
};

// The families, each in a source of its own.
extern const std::vector<Command> kUserCommands;
extern const std::vector<Command> kLockCommands;
extern const std::vector<Command> kConnectionCommands;
extern const std::vector<Command> kServerCommands;
extern const std::vector<Command> kOnlineCommands;  // below "online"; without a server

// A required argument, filled when the line is parsed; it lives as long as what runs with it.
template <class Value>
std::shared_ptr<Value> argument(CLI::App& command, const char* name, const char* help) {
    auto value = std::make_shared<Value>();
    command.add_option(name, *value, help)->required();
    return value;
}

// Reports it and closes the connection. Returns exitNoAnswer.
ExitStatus noAnswer(Context& context);

// For calls that do not report a failure: `status` when the server still answers, else noAnswer.
ExitStatus ifAnswered(Context& context, ExitStatus status);

// Registers the user unless that was done. Returns exitYes, exitNo when refused, exitNoAnswer.
ExitStatus ensureRegistered(Context& context);

// In hex, as "0x18".
std::string shareModeDigits(unsigned mode);

Record describe(const NySeUser& user);
Record describe(const NySeConnection& connection);
void printUsers(Context& context, const NySeUserPtrArray& users);

// Copies the server's user of that name into `user`. False when there is none.
bool findUser(Context& context, const std::string& name, NySeUser& user);

}  // namespace apps::nyctl
