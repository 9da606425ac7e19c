// The window's listener, and how the window gets at it while the connection to the server may end.
#pragma once

#include <memory>
#include <utility>

#include "apps/common/Session.h"
#include "apps/monitor/Backlog.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Also reports the backlog of its window. Threads: as NyServerApp; backlog may be called by any.
class MonitorListener : public NyServerApp {
  public:
    Backlog backlog();
};

// A session that listens so.
class MonitorSession : public Session {
  public:
    using Session::Session;
    MonitorListener& monitorListener() { return static_cast<MonitorListener&>(listener()); }

  protected:
    std::unique_ptr<NyServerApp> makeListener() const override {
        return std::make_unique<MonitorListener>();
    }
};

// The window's reference to the listener that posts to it. The listener is created and
// destroyed by another thread. Any thread may call these functions.
class ListenerReference {
  public:
    explicit ListenerReference(MonitorListener& listener) : m_listener(&listener) {}

    // Calls `action` with the listener, which is not destroyed meanwhile; with null after reset.
    template <class Action>
    void use(Action action) {
        const NySe::MutexLock lock(m_mutex);
        action(m_listener);
    }

    // REQUIRES: called before the listener is destroyed. It posts nothing more, and is not used any
    // more.
    void reset() {
        const NySe::MutexLock lock(m_mutex);
        if (m_listener != nullptr) m_listener->setAppWnd(nullptr);
        m_listener = nullptr;
    }

  private:
    NySe::Mutex m_mutex;
    MonitorListener* m_listener NY_GUARDED_BY(m_mutex);
};

}  // namespace apps::monitor
