// Watch: shows notifications as they arrive.
#pragma once

#include <chrono>
#include <optional>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

struct WatchLimits {
    unsigned long count = 0;                // of notifications; 0: unlimited
    std::chrono::duration<double> time{0};  // 0: unlimited
    bool hasCount() const { return count != 0; }
    bool hasTime() const { return time.count() > 0; }
};

// Used by one thread, for one run.
class Watch {
  public:
    Watch(Context& context, const WatchLimits& limits) : m_context(context), m_limits(limits) {}

    // Returns exitYes when the number of notifications has arrived, at the time-out if there is no
    // such number, and after Ctrl+C; exitTimeOut if the time-out comes first; exitNo if the server
    // has no free port; exitNoReply if the server does not reply or the connection is lost.
    ExitStatus run();

  private:
    using Clock = std::chrono::steady_clock;

    ExitStatus follow();
    // Returns the status to end with now, or nothing to continue.
    std::optional<ExitStatus> outcome() const;
    void show(NySe::ActionType action, CMemFile& payload);

    Context& m_context;
    const WatchLimits m_limits;
    Clock::time_point m_end;
    unsigned long m_seen = 0;
};

Run defineWatch(CLI::App& command);

}  // namespace apps::nyctl
