// ServerWorker: all talk with the server, on a thread of its own.
#pragma once

#include <afxwin.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <optional>
#include <thread>

#include "apps/monitor/MonitorListener.h"
#include "apps/monitor/MonitorView.h"
#include "apps/monitor/ReconnectDelay.h"
#include "apps/monitor/Requests.h"
#include "apps/monitor/WindowQueue.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Connects, registers, listens for the window, and makes requests one after the other. When the
// connection ends it connects again, after a delay that grows. What it finds it tells the view
// through the queue.
//
// Threads: the window's thread makes, starts and stops it and asks; no call waits for the server
// but the destructor. The window, the queue and the view must outlive it.
class ServerWorker {
  public:
    ServerWorker(Account account, CWnd& window, WindowQueue& queue, MonitorView& view)
        : m_account(std::move(account)), m_window(window), m_queue(queue), m_view(view) {}
    // Waits until the thread has ended, which may take as long as an answer may.
    ~ServerWorker();
    ServerWorker(const ServerWorker&) = delete;
    ServerWorker& operator=(const ServerWorker&) = delete;

    void start();
    // Asks it to end and waits so long for that. False when it still waits for the server. From the
    // return on nothing more is posted by a listener.
    bool stop(std::chrono::milliseconds timeOut);

    // The request is made after those asked for earlier, and not when the connection ends before.
    // False, and it is not made, when there is no connection.
    bool request(Request request);
    // Reads the tables soon; connects at once when there is no connection.
    void refresh();

  private:
    void run();
    // Each returns why it is over; empty when the worker is to stop.
    std::wstring runConnection();
    std::wstring serve();
    std::wstring serveOne();
    void attachListener();
    void endSession();
    void awaitNextAttempt(const std::wstring& reason);

    void setServing(bool isServing);
    bool isStopping();
    // Waits a moment for something to do; null also when it is only the tables that are wanted.
    std::optional<Request> takeRequest();
    bool takeRefresh();
    bool perform(const Request& request);
    bool readTables();

    std::wstring whyUnanswered();
    void dropRequests();
    void reportConnected();
    void reportState(const ConnectionState& state);
    void reportActivity(const std::wstring& what);
    void reportOutcome(const Request& request, const std::wstring& outcome);

    Account m_account;
    CWnd& m_window;
    WindowQueue& m_queue;
    MonitorView& m_view;
    MonitorSession m_session{m_account};
    ReconnectDelay m_delay;

    NySe::Mutex m_mutex;
    std::condition_variable m_changed;
    std::shared_ptr<ListenerReference> m_listener NY_GUARDED_BY(m_mutex);
    std::deque<Request> m_requests NY_GUARDED_BY(m_mutex);
    bool m_isServing NY_GUARDED_BY(m_mutex) = false;  // requests are made
    bool m_isRefreshWanted NY_GUARDED_BY(m_mutex) = false;
    bool m_isStopping NY_GUARDED_BY(m_mutex) = false;
    bool m_hasEnded NY_GUARDED_BY(m_mutex) = true;
    std::thread m_thread;
};

}  // namespace apps::monitor
