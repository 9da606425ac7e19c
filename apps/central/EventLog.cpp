#include "apps/central/EventLog.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

std::string oneLine(std::string text) {
    if (text.size() > EventLog::kLongestText) {
        size_t end = EventLog::kLongestText;
        while (end > 0 && continuesCharacter(text[end])) --end;
        text.resize(end);
    }
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
}

std::string timeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    if (::gmtime_s(&utc, &now) != 0) return {};
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &utc));
}

}  // namespace

void EventLog::add(const std::string& text) {
    std::string line = timeNow() + ' ' + oneLine(text);
    const std::lock_guard guard(m_lock);
    m_lines.push_front(std::move(line));
    if (m_lines.size() > kCapacity) m_lines.pop_back();
}

void EventLog::warn(const std::string& text) {
    add(text);
    std::fprintf(stderr, "%s\n", oneLine(text).c_str());
}

std::string EventLog::newest(long count) const {
    const std::lock_guard guard(m_lock);
    std::string list;
    for (const std::string& line : m_lines) {
        if (count-- < 1) break;
        if (!list.empty()) list += '\n';
        list += line;
    }
    return list;
}
