#include "apps/monitor/LogPane.h"

#include <utility>

namespace {

std::vector<Column> logColumns() {
    return {{L"Time", 90}, {L"Event", 220}, {L"Content", 500}};
}

}  // namespace

bool LogPane::create(CWnd& parent, int id) {
    if (!m_label.CreateEx(0, WC_STATICW, L"What happens", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                          parent.GetSafeHwnd(), nullptr))
        return false;
    return m_list.create(
        parent, id, logColumns(), [this](int row, int column) -> auto& {
            const LogLine& line = m_log.at(row);
            const std::wstring* const cells[] = {&line.time, &line.event, &line.content};
            return *cells[column];
        });
}

void LogPane::setFont(HFONT font, int dpi) {
    ::SendMessageW(m_label.GetSafeHwnd(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    m_list.setFont(font, dpi);
}

void LogPane::place(const RECT& title, const RECT& list) {
    ::MoveWindow(m_label.GetSafeHwnd(), title.left, title.top, title.right - title.left,
                 title.bottom - title.top, TRUE);
    m_list.place(list);
}

void LogPane::add(LogLine line) {
    m_log.add(std::move(line));
    m_isBehind = true;
}

void LogPane::update() {
    if (!std::exchange(m_isBehind, false)) return;
    m_list.setCount(m_log.count());
    m_list.scrollToEnd();
}

void LogPane::onNotify(NMHDR& notice) {
    if (notice.code == LVN_GETDISPINFOW) m_list.answer(reinterpret_cast<NMLVDISPINFOW&>(notice));
}
