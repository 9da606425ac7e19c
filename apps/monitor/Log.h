// Log: the latest events.
#pragma once

#include <deque>
#include <string>

namespace apps::monitor {

struct LogLine {
    std::wstring time;
    std::wstring event;
    std::wstring content;
};

// Removes the oldest line when there are more than kMostLines. One object may be used by one thread
// at a time.
class Log {
  public:
    static constexpr size_t kMostLines = 1000;

    void add(LogLine line) {
        m_lines.push_back(std::move(line));
        if (m_lines.size() > kMostLines) m_lines.pop_front();
    }

    int count() const { return static_cast<int>(m_lines.size()); }
    // The oldest is 0. REQUIRES: 0 <= index < count().
    const LogLine& at(int index) const { return m_lines[static_cast<size_t>(index)]; }

  private:
    std::deque<LogLine> m_lines;
};

}  // namespace apps::monitor
