#include "apps/central/Pusher.h"

void Pusher::stop() {
    const std::lock_guard guard(m_lock);
    // All are asked before the first is waited for.
    for (const auto& [session, listener] : m_listeners) listener->end();
    m_listeners.clear();
    m_retired.clear();
}

void Pusher::listen(LONG session, const sockaddr_in& address) {
    const std::lock_guard guard(m_lock);
    const auto present = m_listeners.find(session);
    if (present != m_listeners.end() && present->second->serves(address)) return;
    retire(session);
    joinEnded();
    m_listeners[session] = std::make_unique<Listener>(session, address, m_surroundings);
}

void Pusher::forget(LONG session) {
    const std::lock_guard guard(m_lock);
    retire(session);
    joinEnded();
}

void Pusher::notify(const std::vector<LONG>& sessions, NotificationBytes notification) {
    const std::lock_guard guard(m_lock);
    for (const LONG session : sessions) {
        const auto found = m_listeners.find(session);
        if (found != m_listeners.end()) found->second->push(notification);
    }
}

void Pusher::retire(LONG session) {
    const auto found = m_listeners.find(session);
    if (found == m_listeners.end()) return;
    found->second->end();
    m_retired.insert(m_listeners.extract(found));
}

void Pusher::joinEnded() {
    std::erase_if(m_retired, [](const auto& one) { return one.second->hasEnded(); });
}
