// EventLog: the last things that happened, for whoever asks the server.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

// Any thread may call any of it. Texts are UTF-8. What a text takes over from clients cannot break
// the list: control characters become spaces, and a long text is cut.
class EventLog {
  public:
    // When there are more, the oldest is forgotten.
    static constexpr std::size_t kCapacity = 1000;
    // In bytes, without the time.
    static constexpr std::size_t kLongestText = 200;

    void add(const std::string& text);
    // The same, and a line on standard error.
    void warn(const std::string& text);

    // At most `count` events, newest first, one per line, each with its time (UTC) in front; no
    // line end behind the last. Empty for a count below 1.
    std::string newest(long count) const;

  private:
    mutable std::mutex m_lock;
    std::deque<std::string> m_lines;  // newest first
};
