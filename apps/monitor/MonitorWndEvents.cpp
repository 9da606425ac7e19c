// The events from the server, the listener and the worker.
#include <utility>

#include "apps/common/NotificationText.h"
#include "apps/monitor/MonitorWnd.h"
#include "apps/monitor/resource.h"
#include "apps/monitor/Words.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/listener/NyServerNotification.h"

namespace apps::monitor {

namespace {

std::wstring now() {
    return wide(timeOfDay(std::chrono::system_clock::now()));
}

constexpr UINT_PTR kUpdateTimer = 1;
constexpr UINT kUpdateDelay = 100;  // ms

constexpr int kRequestIds[] = {ID_LOCK, ID_UNLOCK, ID_OPEN, ID_CLOSE, ID_SEND, ID_RENAME};

}  // namespace

// The listener that posted it may have been destroyed meanwhile; then nobody counts.
LRESULT MonitorWnd::onNotification(WPARAM wParam, LPARAM lParam) {
    bool hasTurned = false;
    const auto take = [&](MonitorListener* listener) {
        {
            NyServerNotification notification(wParam, lParam, listener);
            showNotification(notification);
        }
        if (listener != nullptr) hasTurned = watchBacklog(listener->backlog());
    };
    if (m_listener) {
        m_listener->use(take);
    } else {
        take(nullptr);
    }
    if (hasTurned || isUpdateLate()) showAtOnce();
    return 0;
}

void MonitorWnd::showNotification(NyServerNotification& notification) {
    const NySe::ActionType action = notification.getActionType();
    if (action == NySe::noAction) return;  // any program can post the message
    const std::unique_ptr<CObject> object(
        NySe::readReplyObject(notification.getMemFile(), nullptr));
    const NySe::NotificationKind kind = NySe::notificationKind(action);
    addLog(std::to_wstring(action) + L' ' + wide(std::string(kind.words)),
           wide(notificationContent(object.get())));
    m_areTablesBehind = m_areTablesBehind || kind.changesTables;
}

bool MonitorWnd::watchBacklog(const Backlog& backlog) {
    if (std::exchange(m_isPaused, backlog.isPaused) == backlog.isPaused) return false;
    addLog(L"Listener", backlog.isPaused ? L"paused: " + words::posted(backlog) : L"resumed");
    return true;
}

void MonitorWnd::updateSoon() {
    if (std::exchange(m_isUpdateDue, true)) return;
    m_dueSince = ::GetTickCount64();
    ::SetTimer(m_hWnd, kUpdateTimer, kUpdateDelay, nullptr);
}

// The timer's message arrives only when no posted message is waiting.
bool MonitorWnd::isUpdateLate() const {
    return m_isUpdateDue && ::GetTickCount64() - m_dueSince >= kUpdateDelay;
}

// Nor does the window repaint while posted messages are waiting.
void MonitorWnd::showAtOnce() {
    update();
    ::RedrawWindow(m_hWnd, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void MonitorWnd::update() {
    m_isUpdateDue = false;
    ::KillTimer(m_hWnd, kUpdateTimer);
    m_log.update();
    if (std::exchange(m_areTablesBehind, false)) m_worker.refresh();
    if (!m_listener) return;
    m_listener->use([this](MonitorListener* listener) {
        m_status.show(listener != nullptr ? listener->backlog() : Backlog());
    });
}

void MonitorWnd::addLog(const std::wstring& event, const std::wstring& content) {
    m_log.add({now(), event, content});
    updateSoon();
}

void MonitorWnd::setListener(const std::shared_ptr<ListenerReference>& listener) {
    m_listener = listener;
    m_isPaused = false;
    updateSoon();
}

void MonitorWnd::showState(const ConnectionState& state) {
    m_session = state.session;
    if (std::exchange(m_state, state.text) == state.text) return;
    m_status.show(StatusBar::connection, state.text);
    addLog(L"Connection", state.text);
    allowRequests(state.isConnected);
}

void MonitorWnd::showRows(const ServerRows& rows) {
    users().setRows(rows.users);
    connections().setRows(rows.connections);
    locks().setRows(rows.locks);
}

void MonitorWnd::showActivity(const std::wstring& what) {
    m_status.show(StatusBar::activity, what.empty() ? L"Ready" : L"Waiting: " + what);
}

void MonitorWnd::allowRequests(bool isConnected) {
    const HWND keyboard = ::GetFocus();
    const UINT how = static_cast<UINT>(isConnected ? MF_ENABLED : MF_GRAYED);
    for (const int id : kRequestIds) {
        ::EnableMenuItem(::GetMenu(m_hWnd), static_cast<UINT>(id), MF_BYCOMMAND | how);
        ::EnableWindow(control(id), isConnected);
    }
    if (::IsChild(m_hWnd, keyboard) && !::IsWindowEnabled(keyboard)) takeKeyboard();
}

}  // namespace apps::monitor
