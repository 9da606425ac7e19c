// MonitorWnd: the window, and the worked example of an application's main window.
#pragma once

#include <afxwin.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "apps/monitor/Fonts.h"
#include "apps/monitor/Layout.h"
#include "apps/monitor/ListPane.h"
#include "apps/monitor/LogPane.h"
#include "apps/monitor/MonitorView.h"
#include "apps/monitor/ServerWorker.h"
#include "apps/monitor/StatusBar.h"
#include "apps/monitor/WindowQueue.h"

class NyServerNotification;

namespace apps::monitor {

// Lists of users, connections and locks, a log and a status bar; nothing that it does waits for the
// server. It belongs to the thread that makes it.
class MonitorWnd : public CWnd, private MonitorView {
  public:
    static constexpr wchar_t kClassName[] = L"nymonitor";

    explicit MonitorWnd(const Account& account) : m_account(account) {}
    ~MonitorWnd() override;

    // Makes the window, not yet visible, and connects. False when the system makes none.
    bool create();

    // For the message loop: true when the message was a shortcut or moved the keyboard on.
    bool translate(MSG& message);

    // Once the window has gone: waits so long for the talk with the server to end. False when that
    // goes on; then this object's destructor waits for it.
    bool stop(std::chrono::milliseconds timeOut) { return m_worker.stop(timeOut); }

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

  private:
    static constexpr size_t kPanes = 3;

    bool onCreate();
    void placeOnScreen();
    void moveTo(const RECT& area);
    bool createBar();
    bool createButton(size_t index);
    void onSize();
    void onDpiChanged(int dpi, const RECT& area);
    void onSizeLimits(MINMAXINFO& limits) const;
    LRESULT onNotify(NMHDR& notice);
    LRESULT onNotification(WPARAM wParam, LPARAM lParam);
    void showNotification(NyServerNotification& notification);
    void onActivate(bool isActive);
    // Gives the keyboard back to the control that had it; a control that is off takes none.
    void takeKeyboard();
    void onDestroy();
    void useDpi(int dpi);
    // True when the listener has paused or flows again.
    bool watchBacklog(const Backlog& backlog);
    // What was shown is brought up to date soon; many changes at once cost no more than one.
    void updateSoon();
    void update();
    bool isUpdateLate() const;
    void showAtOnce();

    void onCommand(int id, int event);
    void onFilterChanged();
    void ask(const Task& task);
    void lock();
    void unlock();
    void open();
    void close();
    void send();
    void rename();
    void find();
    std::vector<Receiver> receivers() const;
    const Row* findConnection(const std::wstring& text) const;

    void showState(const ConnectionState& state) override;
    void showRows(const ServerRows& rows) override;
    void showActivity(const std::wstring& what) override;
    void addLog(const std::wstring& event, const std::wstring& content) override;
    void setListener(const std::shared_ptr<ListenerReference>& listener) override;
    void allowRequests(bool isConnected);

    HWND control(int id) const { return ::GetDlgItem(m_hWnd, id); }
    ListPane& users() { return m_panes[0]; }
    ListPane& connections() { return m_panes[1]; }
    ListPane& locks() { return m_panes[2]; }

    const Account m_account;
    int m_dpi = USER_DEFAULT_SCREEN_DPI;
    UniqueFont m_font;
    HACCEL m_shortcuts = nullptr;  // the system's

    std::array<CWnd, kButtonCount> m_buttons;
    CWnd m_filterLabel;
    CWnd m_filter;
    std::array<ListPane, kPanes> m_panes{ListPane(L"Users", userColumns()),
                                         ListPane(L"Connections", connectionColumns()),
                                         ListPane(L"Locks", lockColumns())};
    LogPane m_log;
    StatusBar m_status;
    HWND m_keyboard = nullptr;  // the control that had the keyboard when the window lost it

    std::wstring m_state;
    LONG m_session = 0;  // this user's at the server
    bool m_isPaused = false;
    bool m_areTablesBehind = false;
    bool m_isUpdateDue = false;
    ULONGLONG m_dueSince = 0;  // ms
    std::shared_ptr<ListenerReference> m_listener;
    WindowQueue m_queue;
    ServerWorker m_worker{m_account, *this, m_queue, *this};
};

}  // namespace apps::monitor
