#pragma once

#include <condition_variable>
#include <deque>
#include <functional>

#include "NyServer/base/port/Port.h"
#include "NyServer/listener/NyServerApp.h"
#include "NyServer/Mutex.h"

// The notifications that wait for the function of a host, and the thread that calls it, with one at
// a time, in the order in which they were put in. The listener bounds their number as it does that
// of posted messages. Any thread may call `put` and `discard`.
class NotificationQueue {
  public:
    using Receiver = NyServerApp::Receiver;

    // `consumed` is called with this queue after each call of `receiver`, on the same thread.
    NotificationQueue(Receiver receiver, std::function<void(const NotificationQueue&)> consumed);

    // Waits until the receiver has been called with what waits. REQUIRES: not called by the
    // receiver.
    ~NotificationQueue();
    NotificationQueue(const NotificationQueue&) = delete;
    NotificationQueue& operator=(const NotificationQueue&) = delete;

    // Creates the thread. Returns false if it cannot be created.
    [[nodiscard]] bool start();

    // Moves the content of `message` into the queue. Returns false, with the content unchanged, if
    // out of memory, or if so many messages or bytes wait that peers must be ignoring the back
    // pressure.
    [[nodiscard]] bool put(CMemFile& message);

    // Discards what waits.
    void discard();

  private:
    struct Message {
        BYTE* bytes;  // allocated with malloc
        UINT length;
    };

    static void threadMain(void* queue);
    bool hasRoomFor(std::size_t bytes) const NY_REQUIRES(m_mutex);
    bool take(Message& message);
    void deliver(const Message& message);

    const Receiver m_receiver;
    const std::function<void(const NotificationQueue&)> m_consumed;
    port::Thread m_thread;
    NySe::Mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Message> m_messages NY_GUARDED_BY(m_mutex);
    std::size_t m_bytes NY_GUARDED_BY(m_mutex) = 0;  // of these
    bool m_isEnding NY_GUARDED_BY(m_mutex) = false;
};
