#include "apps/central/Listener.h"

#include <array>

#include "NyServer/framing/NySeReply.h"

Listener::Listener(LONG session, const sockaddr_in& address, const PushLimits& limits,
                   EventLog& events)
    : m_session(session),
      m_address(address),
      m_limits(limits),
      m_events(events),
      m_link(address),
      m_thread([this] { run(); }) {}

Listener::~Listener() {
    end();
    m_thread.join();
}

bool Listener::push(NotificationBytes notification) {
    const std::lock_guard guard(m_lock);
    const size_t size = notification->size();
    if (m_isGivenUp || m_isEnding || m_queue.size() >= m_limits.queuedNotifications ||
        m_queuedBytes + size > m_limits.queuedBytes) {
        ++m_dropped;
        return false;
    }
    m_queuedBytes += size;
    m_queue.push_back(std::move(notification));
    m_changed.notify_one();
    return true;
}

bool Listener::serves(const sockaddr_in& address) {
    const std::lock_guard guard(m_lock);
    return !m_isGivenUp && !m_isEnding && m_address.sin_port == address.sin_port &&
           m_address.sin_addr.s_addr == address.sin_addr.s_addr;
}

void Listener::end() {
    const std::lock_guard guard(m_lock);
    m_isEnding = true;
    m_changed.notify_one();
}

void Listener::run() {
    NySe::succeeds([this] { sendAll(); });
    m_hasEnded = true;
}

void Listener::sendAll() {
    while (const NotificationBytes notification = next()) {
        const std::string failure = deliver(*notification);
        if (m_isEnding) return;
        if (!failure.empty()) return giveUp(failure);
        tellFirstDrop();
    }
}

NotificationBytes Listener::next() {
    std::unique_lock guard(m_lock);
    m_changed.wait(guard, [this] { return m_isEnding || !m_queue.empty(); });
    if (m_isEnding) return nullptr;
    NotificationBytes first = std::move(m_queue.front());
    m_queue.pop_front();
    m_queuedBytes -= first->size();
    return first;
}

std::string Listener::deliver(const std::string& bytes) {
    if (!m_link.open(Patience(m_limits.connectPatience, m_isEnding))) return "cannot be reached";
    if (!m_link.send(bytes, Patience(m_limits.sendPatience, m_isEnding)))
        return "does not take its notifications";
    return {};
}

void Listener::giveUp(const std::string& reason) {
    size_t dropped;
    {
        const std::lock_guard guard(m_lock);
        m_isGivenUp = true;
        dropped = m_dropped += m_queue.size() + 1;  // and the one in hand
        m_queue.clear();
        m_queuedBytes = 0;
    }
    m_events.warn(name() + ' ' + reason + ": given up, " + std::to_string(dropped) +
                  " notifications dropped");
}

void Listener::tellFirstDrop() {
    size_t dropped;
    {
        const std::lock_guard guard(m_lock);
        if (m_dropped == 0 || m_isDropTold) return;
        m_isDropTold = true;
        dropped = m_dropped;
    }
    m_events.warn(name() + " is too slow: " + std::to_string(dropped) +
                  " notifications dropped so far");
}

std::string Listener::name() const {
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &m_address.sin_addr, text.data(), text.size());
    return std::string("listener ") + text.data() + ':' +
           std::to_string(::ntohs(m_address.sin_port)) + " of session " + std::to_string(m_session);
}
