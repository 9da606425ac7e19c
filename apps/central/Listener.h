// Listener: one user's listener as the server sees it, with the thread that sends to it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "apps/central/EventLog.h"
#include "apps/central/ListenerLink.h"
#include "apps/central/Notifications.h"
#include "apps/central/PushLimits.h"

// It connects when there is something to send, and is given up when it cannot be reached or takes
// nothing within the limits: what is queued is dropped then, and so is all that comes later.
class Listener {
  public:
    // `events` must outlive it. Throws std::system_error when no thread can be started.
    Listener(LONG session, const sockaddr_in& address, const PushLimits& limits, EventLog& events);
    // Ends the thread, which takes a step of 200 ms at most.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Queues the notification and returns at once. False when it was dropped.
    bool push(NotificationBytes notification);

    // Whether it still sends, and to that address.
    bool serves(const sockaddr_in& address);

    // Asks the thread to end; does not wait for it. What is queued is dropped.
    void end();
    // Whether the thread has nothing more to do, so that the destructor does not wait.
    bool hasEnded() const { return m_hasEnded; }

  private:
    void run();
    void sendAll();
    // Null when the end is asked for.
    NotificationBytes next();
    // What went wrong; empty when the notification has been sent.
    std::string deliver(const std::string& bytes);
    void giveUp(const std::string& reason);
    void tellFirstDrop();
    std::string name() const;

    const LONG m_session;
    const sockaddr_in m_address;
    const PushLimits m_limits;
    EventLog& m_events;
    ListenerLink m_link;

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<NotificationBytes> m_queue;
    size_t m_queuedBytes = 0;
    size_t m_dropped = 0;
    bool m_isGivenUp = false;
    bool m_isDropTold = false;

    std::atomic<bool> m_isEnding = false;
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;  // last: it uses all the others
};
