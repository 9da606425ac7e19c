// Types and functions of the commands of nyctl.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "apps/common/Session.h"
#include "apps/common/Utf8.h"
#include "apps/nyctl/Output.h"

namespace apps::nyctl {

// The exit status of nyctl. Scripts test these numbers: do not change them.
enum ExitStatus : int {
    exitYes = 0,      // yes, granted, done
    exitNo = 1,       // no, refused
    exitUsage = 2,    // the command line was wrong
    exitNoReply = 3,  // no connection, or no reply
    exitTimeOut = 4   // timed out
    // `hold` exits with the status of its command, which may be any number.
};

struct Context {
    Session& session;
    const Output& output;

    NySeClientApp& client() { return session.client(); }
};

using Run = std::function<ExitStatus(Context&)>;

// One row per command. `define` adds its arguments to `command` and returns the function that runs
// it.
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
extern const std::vector<Command> kOnlineCommands;  // below "online"; they need no server

// Adds a required argument, which is set when the line is parsed.
template <class Value>
std::shared_ptr<Value> argument(CLI::App& command, const char* name, const char* help) {
    auto value = std::make_shared<Value>();
    command.add_option(name, *value, help)->required();
    return value;
}

// The interval at which a command that waits checks for a stop, its time-out and a lost connection,
// in milliseconds.
inline constexpr DWORD kRound = 50;

// Reports it and closes the connection. Returns exitNoReply.
ExitStatus noReply(Context& context);

// For calls that do not report a failure. Returns `status` if the server still replies, else
// noReply.
ExitStatus ifAlive(Context& context, ExitStatus status);

// Registers the user unless that was done. Returns exitYes, exitNo if refused, or exitNoReply.
ExitStatus ensureRegistered(Context& context);

// Returns the mode in hex, as "0x18".
std::string shareModeDigits(unsigned mode);

Record describe(const NySeUser& user);
Record describe(const NySeConnection& connection);
void printUsers(Context& context, const NySeUserPtrArray& users);

// Copies the server's user with that name into `user`. Returns false if there is none.
bool findUser(Context& context, const std::string& name, NySeUser& user);

}  // namespace apps::nyctl
