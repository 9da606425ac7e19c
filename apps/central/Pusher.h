// Pusher: sends the notifications, on one thread for each listener.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "apps/central/Listener.h"

// Any thread may call any of it; no call but the destructor waits for a listener or its thread.
class Pusher : public Notifier {
  public:
    // `events` must outlive it. `onDead` is told on any thread, with locks held, of a session whose
    // listener answers no more; it must call nothing of this.
    Pusher(
        const PushLimits& limits, EventLog& events,
        std::function<void(LONG session)> onDead = [](LONG) {})
        : m_surroundings{limits, events, std::move(onDead)} {}
    ~Pusher() override { stop(); }

    // Drops what is queued and joins all threads. dropped() is final then. REQUIRES: nothing is
    // asked of it afterwards but that.
    void stop();

    void listen(LONG session, const sockaddr_in& address) override;
    void forget(LONG session) override;
    void notify(const std::vector<LONG>& sessions, NotificationBytes notification) override;

    // The notifications that were not delivered, for whatever reason, to a listener that was
    // wanted when they came.
    size_t dropped() const { return m_surroundings.dropped; }

  private:
    void retire(LONG session);
    void joinEnded();

    ListenerSurroundings m_surroundings;
    std::mutex m_lock;
    std::map<LONG, std::unique_ptr<Listener>> m_listeners;
    // Their threads are about to end. What is moved here takes no memory, so that it cannot fail.
    std::multimap<LONG, std::unique_ptr<Listener>> m_retired;
};
