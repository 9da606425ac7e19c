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
// nothing within the limits: what is queued is dropped then, and so is all that comes later. What
// it has dropped in all is told once more when it ends, unless that has been told already.
class Listener {
  public:
    // Every notification that is not delivered is added to `droppedByAll`. That and `events` must
    // outlive it. Throws std::system_error when no thread can be started.
    Listener(LONG session, const sockaddr_in& address, const PushLimits& limits, EventLog& events,
             std::atomic<size_t>& droppedByAll);
    // Ends the thread, which takes a step of 200 ms at most.
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Queues the notification, or drops it when there is no room, and returns at once.
    void push(NotificationBytes notification);

    // Whether it still sends, and to that address.
    bool serves(const sockaddr_in& address);

    // Asks the thread to end; does not wait for it. What is queued is dropped.
    void end();
    // Whether the thread has nothing more to do, so that the destructor does not wait.
    bool hasEnded() const { return m_hasEnded; }

  private:
    void run();
    // Null when the end is asked for.
    NotificationBytes next();
    // What went wrong; null when the notification has been sent.
    const char* deliver(const std::string& bytes);
    // Sends on a new connection once more when the present one turns out to be lost.
    ListenerLink::Outcome send(const std::string& bytes);

    // The one that could not be sent, and all behind it.
    void giveUp(const char* reason);
    void tellFirstDrop();
    void tellTotal();
    // REQUIRES: m_lock.
    void countDropped(size_t count);
    void dropQueue();
    std::string name() const;

    const LONG m_session;
    const sockaddr_in m_address;
    const PushLimits m_limits;
    EventLog& m_events;
    std::atomic<size_t>& m_droppedByAll;
    ListenerLink m_link;

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<NotificationBytes> m_queue;
    size_t m_queuedBytes = 0;
    size_t m_dropped = 0;
    bool m_isGivenUp = false;
    size_t m_toldDropped = 0;

    std::atomic<bool> m_isEnding = false;
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;  // last: it uses all the others
};
