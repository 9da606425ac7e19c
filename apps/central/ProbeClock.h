// ProbeClock: when a listener is asked for a sign of life, and how long it has for the answer.
#pragma once

#include <chrono>

// Used by one thread. An interval of 0 means never.
class ProbeClock {
  public:
    using Clock = std::chrono::steady_clock;
    using milliseconds = std::chrono::milliseconds;

    ProbeClock(milliseconds interval, milliseconds patience)
        : m_interval(interval), m_patience(patience), m_isStopped(interval.count() == 0) {
        settle();
    }

    bool isDue() const { return !m_isStopped && !m_isAsking && Clock::now() >= m_next; }
    bool isAsking() const { return m_isAsking; }
    bool isOverdue() const { return m_isAsking && Clock::now() >= m_next; }
    // How long nothing has to be done.
    milliseconds pause() const;

    // Starts the patience.
    void ask();
    // This time is done with; the next comes after an interval.
    void settle();
    // There is no next time.
    void stop();

  private:
    const milliseconds m_interval;
    const milliseconds m_patience;
    bool m_isStopped;
    bool m_isAsking = false;
    Clock::time_point m_next;  // to ask, or to stop waiting for the answer
};
