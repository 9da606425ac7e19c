// ReconnectDelay: how long to wait before the next attempt to connect.
#pragma once

#include <algorithm>
#include <chrono>

namespace apps::monitor {

// Each wait is twice the one before, up to the longest.
class ReconnectDelay {
  public:
    using Duration = std::chrono::milliseconds;

    // Returns the wait before the next attempt.
    Duration next() {
        const Duration delay = m_next;
        m_next = std::min(2 * m_next, kLongest);
        return delay;
    }

    // To be called when an attempt has succeeded.
    void reset() { m_next = kFirst; }

  private:
    static constexpr Duration kFirst{1000};
    static constexpr Duration kLongest{30'000};

    Duration m_next = kFirst;
};

}  // namespace apps::monitor
