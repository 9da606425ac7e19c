// ServerWorker: the communication with the server, on a thread of its own.
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
#include "apps/monitor/Tasks.h"
#include "apps/monitor/WindowQueue.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Connects, registers, listens for the window, and runs the user's tasks one after the other.
// Reconnects after the connection ends, with an increasing delay. Reports to the view through the
// queue.
//
// Threads: the window's thread creates, starts, stops and calls it. No call waits for the server
// except the destructor. The window, the queue and the view must outlive it.
class ServerWorker {
  public:
    ServerWorker(Account account, CWnd& window, WindowQueue& queue, MonitorView& view)
        : m_account(std::move(account)), m_window(window), m_queue(queue), m_view(view) {}
    // Waits until the thread has ended, for as long as the server may take to reply.
    ~ServerWorker();
    ServerWorker(const ServerWorker&) = delete;
    ServerWorker& operator=(const ServerWorker&) = delete;

    void start();
    // Requests the end and waits for it. Returns false if the thread did not end in time because it
    // waits for the server. After the return the listener posts nothing.
    bool stop(std::chrono::milliseconds timeOut);

    // Queues a task. It is dropped if the connection ends before it is run. Returns false if
    // there is no connection.
    bool post(Task task);
    // Requests that the tables are read soon, or a reconnect at once if there is no connection.
    void refresh();

  private:
    void run();
    // Each returns why it ended; empty if the worker is to stop.
    std::wstring runConnection();
    std::wstring serve();
    std::wstring serveOne();
    void attachListener();
    void endSession();
    void awaitNextAttempt(const std::wstring& reason);

    void setServing(bool isServing);
    bool isStopping();
    // Waits for something to do, at most 200 ms. Returns nothing if there is no task, or the
    // tables are to be read.
    std::optional<Task> takeTask();
    bool takeRefresh();
    bool perform(const Task& task);
    bool readTables();

    std::wstring whyNoReply();
    void dropTasks();
    void reportConnected();
    void reportState(const ConnectionState& state);
    void reportActivity(const std::wstring& what);
    void reportOutcome(const Task& task, const std::wstring& outcome);

    Account m_account;
    CWnd& m_window;
    WindowQueue& m_queue;
    MonitorView& m_view;
    MonitorSession m_session{m_account};
    ReconnectDelay m_delay;

    NySe::Mutex m_mutex;
    std::condition_variable m_changed;
    std::shared_ptr<ListenerReference> m_listener NY_GUARDED_BY(m_mutex);
    std::deque<Task> m_tasks NY_GUARDED_BY(m_mutex);
    bool m_isServing NY_GUARDED_BY(m_mutex) = false;  // tasks are run
    bool m_isRefreshWanted NY_GUARDED_BY(m_mutex) = false;
    bool m_isStopping NY_GUARDED_BY(m_mutex) = false;
    bool m_hasEnded NY_GUARDED_BY(m_mutex) = true;
    std::thread m_thread;
};

}  // namespace apps::monitor
