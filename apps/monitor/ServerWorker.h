// ServerWorker: all talk with the server, on a thread of its own.
#pragma once

#include <afxwin.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "apps/monitor/MonitorListener.h"
#include "apps/monitor/MonitorView.h"
#include "apps/monitor/ReconnectDelay.h"
#include "apps/monitor/Tasks.h"
#include "apps/monitor/WindowQueue.h"

namespace apps::monitor {

// Connects, registers, listens for the window, and runs the user's tasks one after the other. When
// the connection ends it connects again, after a delay that grows. What it finds it tells the view
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

    // The task is run after those posted earlier, and not when the connection ends before. False,
    // and it is not run, when there is no connection.
    bool post(Task task);
    // Reads the tables soon; connects at once when there is no connection.
    void refresh();

  private:
    using Lock = std::unique_lock<std::mutex>;

    void run();
    // Each returns why it is over; empty when the worker is to stop.
    std::wstring runConnection();
    std::wstring serve();
    std::wstring serveOne();
    void enter();
    void leave();
    void awaitNextAttempt(const std::wstring& reason);

    void setServing(bool isServing);
    bool isStopping();
    // Waits a moment for something to do; null also when it is only the tables that are wanted.
    std::optional<Task> takeTask();
    bool takeRefresh();
    bool perform(const Task& task);
    bool readTables();

    std::wstring whyUnanswered();
    void dropTasks();
    void tellConnected();
    void tellState(const ConnectionState& state);
    void tellActivity(const std::wstring& what);
    void tellOutcome(const Task& task, const std::wstring& outcome);

    Account m_account;
    CWnd& m_window;
    WindowQueue& m_queue;
    MonitorView& m_view;
    MonitorSession m_session{m_account};
    ReconnectDelay m_delay;

    std::mutex m_mutex;
    std::shared_ptr<ListenerReference> m_listener;
    std::condition_variable m_changed;
    std::deque<Task> m_tasks;
    bool m_isServing = false;  // tasks are run
    bool m_isRefreshWanted = false;
    bool m_isStopping = false;
    bool m_hasEnded = true;
    std::thread m_thread;
};

}  // namespace apps::monitor
