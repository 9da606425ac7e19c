#include "apps/nyctl/windows/WatchWindow.h"

#include <stdexcept>
#include <utility>

#include "NyServer/host/NyServerModule.h"
#include "NyServer/listener/NyServerNotification.h"

namespace apps::nyctl {

WatchWindow::WatchWindow(NyServerApp& listener, Show show)
    : m_listener(listener), m_show(std::move(show)) {
    if (!CreateEx(0, AfxRegisterWndClass(0), L"nyctl", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr))
        throw std::runtime_error("the window cannot be created");
    m_listener.setAppWnd(this);
}

WatchWindow::~WatchWindow() {
    m_listener.setAppWnd(nullptr);
    const UINT posted = NySe::_TM_NYSERVERMESSAGE;
    MSG message;
    while (::PeekMessageW(&message, m_hWnd, posted, posted, PM_REMOVE))
        const NyServerNotification dropped(message.wParam, message.lParam, &m_listener);
}

LRESULT WatchWindow::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != NySe::_TM_NYSERVERMESSAGE) return CWnd::WindowProc(message, wParam, lParam);
    NyServerNotification notification(wParam, lParam, &m_listener);
    // Any program can post the message without a notification.
    if (notification.getActionType() != NySe::noAction)
        m_show(notification.getActionType(), notification.getMemFile());
    return 0;
}

bool dispatchNextMessage() {
    MSG message;
    if (!::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
    ::DispatchMessageW(&message);
    return true;
}

}  // namespace apps::nyctl
