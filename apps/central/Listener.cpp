#include "apps/central/Listener.h"

#include <array>
#include <cstring>

#include "NyServer/detail/ExceptionBoundary.h"

namespace {

// In bytes; a longer notification goes out alone. Thousands of small ones in a piece each take the
// system longer than the changes that they tell of.
constexpr size_t kLongestBatch = size_t{64} * 1024;

// Until the next attempt at what has failed for want of memory.
constexpr DWORD kPauseWithoutMemoryMs = 50;

NotificationBytes joined(const std::deque<NotificationBytes>& batch) {
    if (batch.size() == 1) return batch.front();
    auto bytes = std::make_shared<std::string>();
    for (const NotificationBytes& one : batch) *bytes += *one;
    return bytes;
}

// Takes those out that are wholly among the first `sent` bytes. Whether there were any.
bool removeSent(std::deque<NotificationBytes>& batch, size_t sent) {
    const size_t before = batch.size();
    while (!batch.empty() && batch.front()->size() <= sent) {
        sent -= batch.front()->size();
        batch.pop_front();
    }
    return batch.size() < before;
}

}  // namespace

Listener::Listener(LONG session, const sockaddr_in& address, ListenerSurroundings& surroundings)
    : m_session(session),
      m_address(address),
      m_surroundings(surroundings),
      m_limits(surroundings.limits),
      m_events(surroundings.events),
      m_link(address),
      m_probe(m_limits.probeInterval, m_limits.probePatience),
      m_thread([this] { run(); }) {}

Listener::~Listener() {
    end();
    m_thread.join();
}

void Listener::push(NotificationBytes notification) {
    const std::lock_guard guard(m_lock);
    const size_t size = notification->size();
    if (m_isGivenUp || m_isEnding || m_queue.size() >= m_limits.queuedNotifications ||
        m_queuedBytes + size > m_limits.queuedBytes)
        return countDropped(1);
    m_queue.push_back(std::move(notification));
    m_queuedBytes += size;
    m_changed.notify_one();
}

bool Listener::serves(const sockaddr_in& address) {
    const std::lock_guard guard(m_lock);
    return !m_isGivenUp && !m_isEnding && m_address.sin_port == address.sin_port &&
           m_address.sin_addr.s_addr == address.sin_addr.s_addr;
}

void Listener::end() {
    const std::lock_guard guard(m_lock);
    m_isEnding = true;
    dropQueue();
    m_changed.notify_one();
}

// It goes on after it has given up, with a queue that stays empty: what is dropped until the end is
// told then.
void Listener::run() {
    while (!m_isEnding) {
        if (!NySe::succeeds([this] { serveNext(); })) ::Sleep(kPauseWithoutMemoryMs);
        NySe::succeeds([this] { probe(); });
    }
    NySe::succeeds([this] { tellTotal(); });
    m_hasEnded = true;
}

void Listener::serveNext() {
    Batch batch;
    const bool isAllTaken = NySe::succeeds([&] { takeNext(batch); });
    if (!batch.empty()) handle(batch);
    if (!isAllTaken) ::Sleep(kPauseWithoutMemoryMs);
}

void Listener::handle(Batch& batch) {
    const char* failure = "cannot be served";  // for want of memory
    NySe::succeeds([&] { failure = deliver(batch); });
    NySe::succeeds([&] { failure == nullptr ? tellFirstDrop() : giveUp(failure, batch.size()); });
}

void Listener::takeNext(Batch& batch) {
    std::unique_lock guard(m_lock);
    m_changed.wait_for(guard, m_probe.pause(), [this] { return m_isEnding || !m_queue.empty(); });
    for (size_t bytes = 0; !m_isEnding && !m_queue.empty();) {
        const size_t size = m_queue.front()->size();
        bytes += size;
        if (bytes > kLongestBatch && !batch.empty()) break;
        batch.push_back(m_queue.front());  // may throw, so that it comes first
        m_queue.pop_front();
        m_queuedBytes -= size;
    }
}

const char* Listener::deliver(Batch& batch) {
    switch (send(batch)) {
        case ListenerLink::Outcome::done:
            return nullptr;
        case ListenerLink::Outcome::unreachable:
            return "cannot be reached";
        default:
            return "does not take its notifications";
    }
}

ListenerLink::Outcome Listener::send(Batch& batch) {
    for (int attempts = 0; !batch.empty() && attempts < 2; ++attempts) {
        if (!m_link.open(Patience(m_limits.connectPatience, m_isEnding)))
            return ListenerLink::Outcome::unreachable;
        size_t sent = 0;
        const auto outcome =
            m_link.send(*joined(batch), Patience(m_limits.sendPatience, m_isEnding), sent);
        if (removeSent(batch, sent)) attempts = 0;  // another one is the first now
        if (outcome == ListenerLink::Outcome::tooSlow) return outcome;
    }
    return batch.empty() ? ListenerLink::Outcome::done : ListenerLink::Outcome::lost;
}

void Listener::probe() {
    if (m_probe.isDue()) {
        m_probe.ask();
        return sendProbe();
    }
    if (!m_probe.isAsking()) return;
    static const LONG alive = NySe::kAliveAnswer;
    const std::string& heard = m_link.hear();
    const bool isSameLink = m_link.opened() == m_probedLink;
    if (isSameLink && heard.size() == sizeof alive) {
        const bool isAlive = std::memcmp(heard.data(), &alive, sizeof alive) == 0;
        return isAlive ? m_probe.settle() : die("answers a probe wrongly");
    }
    if (m_probe.isOverdue()) return die("does not answer");
    if (!isSameLink || !m_link.isOpen()) sendProbe();  // the first one is lost
}

// One that fails is sent again with the next step, until it is overdue.
void Listener::sendProbe() {
    static const NotificationBytes bytes = makeProbe();
    if (!m_link.open(Patience(m_limits.connectPatience, m_isEnding)))
        return m_link.opened() == 0 ? m_probe.settle() : die("can no longer be reached");
    m_link.forgetHeard();
    m_probedLink = m_link.opened();
    size_t sent = 0;
    m_link.send(*bytes, Patience(m_limits.probePatience, m_isEnding), sent);
}

void Listener::die(const char* reason) {
    {
        const std::lock_guard guard(m_lock);
        if (m_isEnding) return;
        m_surroundings.onDead(m_session);  // before the stop: when it throws it is tried again
    }
    m_probe.stop();
    m_events.warn(name() + ' ' + reason + ": its user is gone");
}

void Listener::giveUp(const char* reason, size_t unsent) {
    size_t dropped;
    {
        const std::lock_guard guard(m_lock);
        m_isGivenUp = true;
        countDropped(unsent);
        dropQueue();
        if (m_isEnding) return;
        dropped = m_toldDropped = m_dropped;
    }
    m_events.warn(name() + ' ' + reason + ": given up, " + notificationCount(dropped) + " dropped");
}

void Listener::tellFirstDrop() {
    size_t dropped;
    {
        const std::lock_guard guard(m_lock);
        if (m_dropped == 0 || m_toldDropped != 0 || m_isEnding) return;
        dropped = m_toldDropped = m_dropped;
    }
    m_events.warn(name() + " is too slow: " + notificationCount(dropped) + " dropped so far");
}

void Listener::tellTotal() {
    size_t dropped;
    {
        const std::lock_guard guard(m_lock);
        if (m_dropped == m_toldDropped) return;
        dropped = m_toldDropped = m_dropped;
    }
    m_events.warn(name() + " has ended: " + notificationCount(dropped) + " dropped in all");
}

void Listener::countDropped(size_t count) {
    m_dropped += count;
    m_surroundings.dropped += count;
}

void Listener::dropQueue() {
    countDropped(m_queue.size());
    m_queue.clear();
    m_queuedBytes = 0;
}

std::string Listener::name() const {
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &m_address.sin_addr, text.data(), text.size());
    return std::string("listener ") + text.data() + ':' +
           std::to_string(::ntohs(m_address.sin_port)) + " of session " + std::to_string(m_session);
}
