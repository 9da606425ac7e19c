#include "apps/monitor/LogPane.h"

#include <utility>

namespace apps::monitor {

std::vector<Column> LogPane::columns() {
    return {{L"Time", 90}, {L"Event", 220}, {L"Content", 500}};
}

const std::wstring& LogPane::textOf(int row, int column) const {
    const LogLine& line = m_log.at(row);
    const std::wstring* const cells[] = {&line.time, &line.event, &line.content};
    return *cells[column];
}

void LogPane::add(LogLine line) {
    m_log.add(std::move(line));
    m_isBehind = true;
}

void LogPane::update() {
    if (!std::exchange(m_isBehind, false)) return;
    const bool isFollowed = m_list.isAtEnd();  // else the user has scrolled up
    m_list.setCount(m_log.count());
    if (isFollowed) m_list.scrollToEnd();
}

}  // namespace apps::monitor
