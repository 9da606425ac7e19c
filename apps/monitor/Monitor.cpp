#include "apps/monitor/Monitor.h"

#include "apps/monitor/MonitorWnd.h"

namespace apps::monitor {

namespace {

constexpr std::chrono::milliseconds kTimeOut{1000};

void dispatchUntilQuit(MonitorWnd& window) {
    MSG message;
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (window.translate(message)) continue;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

}  // namespace

bool runMonitor(const Account& account, void (*abandon)()) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    ::InitCommonControlsEx(&controls);
    MonitorWnd window(account);
    if (!window.create()) return false;
    ::ShowWindow(window.m_hWnd, SW_SHOWDEFAULT);
    dispatchUntilQuit(window);
    if (!window.stop(kTimeOut)) abandon();
    return true;
}

}  // namespace apps::monitor
