// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/listener/NotificationQueue.h"

#include <cstdlib>
#include <utility>

#include "NyServer/framing/NySeNotification.h"

namespace {

// A peer that ignores the back pressure, as by a new connection for each message, gets no further.
constexpr std::size_t kMostMessages = 10'000;
constexpr std::size_t kMostBytes = std::size_t{256} << 20;

}  // namespace

NotificationQueue::NotificationQueue(Receiver receiver,
                                     std::function<void(const NotificationQueue&)> consumed)
    : m_receiver(std::move(receiver)), m_consumed(std::move(consumed)) {}

NotificationQueue::~NotificationQueue() {
    {
        const NySe::MutexLock lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    m_thread.join();
    discard();
}

bool NotificationQueue::start() {
    return m_thread.start(threadMain, this) != port::kNoThread;
}

bool NotificationQueue::put(CMemFile& message) {
    const bool isPut = NySe::resultOr(false, [&] {
        const NySe::MutexLock lock(m_mutex);
        const auto length = static_cast<UINT>(message.GetLength());
        if (!hasRoomFor(length)) return false;
        m_messages.push_back({nullptr, length});
        m_messages.back().bytes = message.Detach();
        m_bytes += length;
        return true;
    });
    if (isPut) m_changed.notify_one();
    return isPut;
}

void NotificationQueue::threadMain(void* queue) {
    auto* const self = static_cast<NotificationQueue*>(queue);
    Message message{};
    while (self->take(message)) self->deliver(message);
}

void NotificationQueue::discard() {
    const NySe::MutexLock lock(m_mutex);
    for (const Message& message : m_messages) std::free(message.bytes);
    m_messages.clear();
    m_bytes = 0;
}

bool NotificationQueue::hasRoomFor(std::size_t bytes) const {
    return m_messages.empty() ||
           (m_messages.size() < kMostMessages && m_bytes + bytes <= kMostBytes);
}

// Waits for the next message. Returns false to end the thread.
bool NotificationQueue::take(Message& message) {
    NySe::MutexLock lock(m_mutex);
    while (m_messages.empty() && !m_isEnding) m_changed.wait(lock.standard());
    if (m_messages.empty()) return false;
    message = m_messages.front();
    m_messages.pop_front();
    m_bytes -= message.length;
    return true;
}

void NotificationQueue::deliver(const Message& message) {
    const NySe::FoundNotification found = NySe::findNotification(message.bytes, message.length);
    NySe::succeeds([&] {
        CMemFile payload(0);
        if (found.payload) payload.Attach(found.payload, found.length);
        m_receiver(found.action, payload);
    });
    std::free(message.bytes);
    m_consumed(*this);
}
