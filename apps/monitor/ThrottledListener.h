// The window's listener, and how the window gets at it while the connection to the server may end.
#pragma once

#include <memory>
#include <mutex>
#include <utility>

#include "apps/common/Session.h"
#include "apps/monitor/Throttle.h"

// Also says how far the window is behind. Threads: as NyServerApp; throttle may be called by any.
class ThrottledListener : public NyServerApp {
  public:
    Throttle throttle();
};

// A session that listens so.
class MonitorSession : public Session {
  public:
    using Session::Session;
    ThrottledListener& throttledListener() { return static_cast<ThrottledListener&>(listener()); }

  protected:
    std::unique_ptr<NyServerApp> makeListener() const override {
        return std::make_unique<ThrottledListener>();
    }
};

// Leads from the window to the listener that posts to it, until the listener goes: that is made and
// destroyed by another thread. May be used by any thread.
class ListenerLink {
  public:
    explicit ListenerLink(ThrottledListener& listener) : m_listener(&listener) {}

    // Calls `action` with the listener, which does not go meanwhile; with null when it has gone.
    template <class Action>
    void use(Action action) {
        const std::lock_guard lock(m_mutex);
        action(m_listener);
    }

    // Before the listener goes: nothing more is posted by it, and nobody uses it any more.
    void sever() {
        const std::lock_guard lock(m_mutex);
        if (m_listener != nullptr) m_listener->setAppWnd(nullptr);
        m_listener = nullptr;
    }

  private:
    std::mutex m_mutex;
    ThrottledListener* m_listener;
};
