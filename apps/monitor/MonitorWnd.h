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

// Lists of users, connections and locks, a log and a status bar. It never waits for the server. It
// belongs to the thread that creates it.
class MonitorWnd : public CWnd, private MonitorView {
  public:
    static constexpr wchar_t kClassName[] = L"nymonitor";

    explicit MonitorWnd(const Account& account) : m_account(account) {}
    ~MonitorWnd() override;

    // Creates the window, not yet visible, and connects. Returns false if the window cannot be
    // created.
    bool create();

    // For the message loop: returns true if the message was a shortcut or moved the focus.
    bool translate(MSG& message);

    // After the window is destroyed: waits for the worker to end. Returns false if it is still
    // running; the destructor waits for it.
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
    LRESULT onNotify(NMHDR& header);
    LRESULT onNotification(WPARAM wParam, LPARAM lParam);
    void showNotification(NyServerNotification& notification);
    void onActivate(bool isActive);
    // Returns the focus to the control that had it, unless that is disabled.
    void takeKeyboard();
    void onDestroy();
    void useDpi(int dpi);
    // Returns whether the listener has paused or resumed.
    bool watchBacklog(const Backlog& backlog);
    // Schedules an update of the window; many changes at once cause one update.
    void updateSoon();
    void update();
    bool isUpdateLate() const;
    void showAtOnce();

    void onCommand(int id, int event);
    void onFilterChanged();
    void request(const Task& task);
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
    HACCEL m_shortcuts = nullptr;  // owned by the system

    std::array<CWnd, kButtonCount> m_buttons;
    CWnd m_filterLabel;
    CWnd m_filter;
    std::array<ListPane, kPanes> m_panes{ListPane(L"Users", userColumns()),
                                         ListPane(L"Connections", connectionColumns()),
                                         ListPane(L"Locks", lockColumns())};
    LogPane m_log;
    StatusBar m_status;
    HWND m_keyboard = nullptr;  // the control that had the focus when the window was deactivated

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
