// Watch: shows the notifications that come, until something ends it.
#pragma once

#include <chrono>
#include <optional>

#include "apps/nyctl/CommandTools.h"

namespace apps::nyctl {

struct WatchLimits {
    unsigned long count = 0;                // notifications; 0: any number
    std::chrono::duration<double> time{0};  // 0: as long as it takes
    bool hasCount() const { return count != 0; }
    bool hasTime() const { return time.count() > 0; }
};

// Used by one thread, for one run.
class Watch {
  public:
    Watch(Context& context, const WatchLimits& limits) : m_context(context), m_limits(limits) {}

    // exitYes when the number of notifications has come, when no number was asked for and the time
    // is up, and after Ctrl+C; exitTimeOut when the time is up earlier; exitNo when the server
    // gives no port that is free; exitNoAnswer when the server does not answer or goes away.
    ExitStatus run();

  private:
    using Clock = std::chrono::steady_clock;

    ExitStatus follow();
    // Why it ends now; nothing when it goes on.
    std::optional<ExitStatus> outcome() const;
    void show(NySe::ActionType action, CMemFile& payload);

    Context& m_context;
    const WatchLimits m_limits;
    Clock::time_point m_end;
    unsigned long m_seen = 0;
};

}  // namespace apps::nyctl
