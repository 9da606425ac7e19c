// The listener of the window, and a reference to it that stays valid after the connection ends.
#pragma once

#include <memory>
#include <utility>

#include "apps/common/Session.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Notifications that the listener has posted and the window has not consumed.
struct Backlog {
    int posted = 0;  // notifications
    long limit = 0;  // above it the listener stops reading until all are consumed
    bool isPaused = false;
};

// A listener that reports the backlog of its window. Any thread may call backlog.
class MonitorListener : public NyServerApp {
  public:
    Backlog backlog() {
        const ThreadListLock lock(*this);
        Backlog backlog{getPostMsgCount(), getPostMessageLimit(), false};
        for (const ThreadListEntry* entry = ThreadListFirst(); entry != nullptr;
             entry = entry->next)
            if (static_cast<const NyServerThreadApp*>(entry->worker)->isPaused())
                backlog.isPaused = true;
        return backlog;
    }
};

// A session whose listener is a MonitorListener.
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

    // Calls `action` with the listener, or with null after reset. The listener exists during the
    // call.
    template <class Action>
    void use(Action action) {
        const NySe::MutexLock lock(m_mutex);
        action(m_listener);
    }

    // Clears the window of the listener and the reference. REQUIRES: called before the listener is
    // destroyed.
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
