#include "apps/monitor/StatusBar.h"

#include "NyServer/base/WindowsPrelude.h"
// After the Windows headers.
#include <commctrl.h>

#include "apps/monitor/Layout.h"
#include "apps/monitor/Words.h"

namespace apps::monitor {

bool StatusBar::create(CWnd& parent, int id) {
    return m_bar.CreateEx(0, STATUSCLASSNAMEW, L"",
                          WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP | SBARS_TOOLTIPS, 0, 0, 0, 0,
                          parent.GetSafeHwnd(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)));
}

void StatusBar::setFont(HFONT font, int dpi) {
    m_dpi = dpi;
    ::SendMessageW(m_bar.GetSafeHwnd(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

// The connection and the activity have the longest texts and share the remaining width.
void StatusBar::fit() {
    ::SendMessageW(m_bar.GetSafeHwnd(), WM_SIZE, 0, 0);
    RECT client{};
    ::GetClientRect(m_bar.GetSafeHwnd(), &client);
    const int flowLeft = static_cast<int>(client.right) - scaled(90, m_dpi);
    const int postedLeft = flowLeft - scaled(130, m_dpi);
    const int ends[] = {postedLeft / 2, postedLeft, flowLeft, -1};
    ::SendMessageW(m_bar.GetSafeHwnd(), SB_SETPARTS, std::size(ends),
                   reinterpret_cast<LPARAM>(ends));
}

int StatusBar::height() const {
    RECT area{};
    ::GetWindowRect(m_bar.GetSafeHwnd(), &area);
    return static_cast<int>(area.bottom - area.top);
}

void StatusBar::show(Part part, const std::wstring& text) {
    if (m_texts[part] == text) return;
    m_texts[part] = text;
    for (const UINT message : {SB_SETTEXTW, SB_SETTIPTEXTW})
        ::SendMessageW(m_bar.GetSafeHwnd(), message, part, reinterpret_cast<LPARAM>(text.c_str()));
}

void StatusBar::show(const Backlog& backlog) {
    show(posted, words::posted(backlog));
    show(flow, words::flow(backlog));
}

}  // namespace apps::monitor
