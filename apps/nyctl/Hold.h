// Hold: holds a lock while a command runs.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

struct HoldRequest {
    std::string lock;
    unsigned mode;
    std::chrono::duration<double> wait;  // the time-out for the lock; 0: request it once
    std::vector<std::string> command;
};

// Used by one thread, for one run.
class Hold {
  public:
    Hold(Context& context, const HoldRequest& request) : m_context(context), m_request(request) {}

    // Returns the status of the command; exitNo if the lock is refused until the time-out, or if a
    // stop was requested before it was granted; exitNoReply if the server does not reply before
    // the command runs. The lock is released in every case.
    ExitStatus run();

  private:
    using Clock = std::chrono::steady_clock;

    // These return exitYes, exitNo, or exitNoReply if the server does not reply.
    ExitStatus acquire();
    ExitStatus acquireInTime();
    ExitStatus registerUser() const;
    ExitStatus request() const;
    ExitStatus statusOf(bool isDone) const;

    ExitStatus runAndRelease() const;
    int runCommand() const;

    Context& m_context;
    const HoldRequest& m_request;
};

Run defineHold(CLI::App& command);

}  // namespace apps::nyctl
