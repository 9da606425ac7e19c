// HeldCommand: a command that runs while a lock is held.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "NyServer/base/port/Platform.h"

namespace apps::nyctl {

// The exit statuses for a command that cannot be started, as a shell has them.
inline constexpr int kNotExecutable = 126;
inline constexpr int kNotFound = 127;
// A command that a signal ended has this status, plus the number of the signal.
inline constexpr int kSignalled = 128;

// The child process has the standard input and output of this one. On Windows it ends with this
// process, and Ctrl+C reaches it from the console. Elsewhere it goes on if SIGKILL ends this one;
// SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1 and SIGUSR2 that a process sends to this one are passed
// on to it; those of a terminal reach it from there. At most one object exists at a time. Used by
// one thread, which is the only one that does not block these signals.
class HeldCommand {
  public:
    // Starts the command, which is looked for as a shell does.
    static std::unique_ptr<HeldCommand> start(const std::vector<std::string>& words);
    // Ends the command, as terminate does, if it still runs.
    virtual ~HeldCommand() = default;
    HeldCommand(const HeldCommand&) = delete;
    HeldCommand& operator=(const HeldCommand&) = delete;

    // Returns the exit status when the command has ended, after waiting for that for at most the
    // time. kNotFound or kNotExecutable if it was not started. 1 if the system does not report the
    // status.
    virtual std::optional<int> wait(DWORD milliseconds) = 0;
    virtual bool isStarted() const = 0;

    // Ends the command: with SIGTERM, which it may ignore; on Windows by force, with the status of
    // SIGTERM.
    virtual void terminate() = 0;

  protected:
    HeldCommand() = default;
};

}  // namespace apps::nyctl
