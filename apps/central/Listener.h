// Listener: one user's listener as the server sees it, with the thread that sends to it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "apps/central/EventLog.h"
#include "apps/central/ListenerLink.h"
#include "apps/central/Notifications.h"
#include "apps/central/ProbeClock.h"
#include "apps/central/PushLimits.h"

// What all listeners have in common.
struct ListenerSurroundings {
    const PushLimits limits;
    EventLog& events;
    // Told on the listener's thread, under its lock, that the session's listener is dead.
    const std::function<void(LONG session)> onDead;
    // Every notification that is not delivered is added to it.
    std::atomic<size_t> dropped = 0;
};

// It connects when there is something to send, and is given up when it cannot be reached or takes
// nothing within the limits: what is queued is dropped then, and so is all that comes later. What
// it has dropped in all is told once more when it ends, unless that has been told already.
//
// Every probeInterval it is asked for a sign of life, given up or not. One that has been reached
// before and does not give it is dead. One that has never been reached is none: its user does
// without notifications.
class Listener {
  public:
    // `surroundings` must outlive it. Throws std::system_error when no thread can be started.
    Listener(LONG session, const sockaddr_in& address, ListenerSurroundings& surroundings);
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
    // What goes out in one piece.
    using Batch = std::deque<NotificationBytes>;

    void run();
    // Waits for notifications or the time of the probe, and sends what there is.
    void serveNext();
    // Moves the next piece out of the queue: nothing when the end is asked for, or the probe has to
    // be seen to. What it throws over, for want of memory, stays in the queue.
    void takeNext(Batch& batch);
    void handle(Batch& batch);
    // What went wrong; null when all has been sent. What has not stays in the batch.
    const char* deliver(Batch& batch);
    // A notification that is lost with its connection goes out on a new one once more, whole.
    ListenerLink::Outcome send(Batch& batch);

    // The step of the probe that is to be done now, if there is one; it waits for no answer.
    void probe();
    void sendProbe();
    void die(const char* reason);

    // So many that could not be sent, and all behind them.
    void giveUp(const char* reason, size_t unsent);
    void tellFirstDrop();
    void tellTotal();
    // REQUIRES: m_lock.
    void countDropped(size_t count);
    void dropQueue();
    std::string name() const;

    const LONG m_session;
    const sockaddr_in m_address;
    ListenerSurroundings& m_surroundings;
    const PushLimits& m_limits;
    EventLog& m_events;
    ListenerLink m_link;
    ProbeClock m_probe;
    unsigned long m_probedLink = 0;  // which of the link's connections the probe went out on

    std::mutex m_lock;
    std::condition_variable m_changed;
    Batch m_queue;
    size_t m_queuedBytes = 0;
    size_t m_dropped = 0;
    bool m_isGivenUp = false;
    size_t m_toldDropped = 0;

    std::atomic<bool> m_isEnding = false;
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;  // last: it uses all the others
};
