#include "NyServer/socket/RundownProtection.h"

bool RundownProtection::tryAttach(Entry& entry) {
    const Lock lock(*this);
    if (m_state != State::Open) return false;
    ++m_attached;
    enter(entry, false);
    return true;
}

RundownProtection::State RundownProtection::reenter(Entry& entry) {
    const Lock lock(*this);
    if (m_state != State::Destroyed) enter(entry, false);
    return m_state;
}

bool RundownProtection::tryEnter(Entry& entry) {
    const Lock lock(*this);
    if (m_state != State::Open) return false;
    enter(entry, true);
    return true;
}

void RundownProtection::leave(Entry& entry) {
    const Lock lock(*this);
    Entry** link = &m_entries;
    while (*link && *link != &entry) link = &(*link)->m_next;
    if (*link) *link = entry.m_next;
}

void RundownProtection::detach() {
    const Lock lock(*this);
    --m_attached;
}

bool RundownProtection::closeIfIdle() {
    const Lock lock(*this);
    if (m_attached > 0 || hasOthersInside(Threads::All)) return false;
    m_state = State::Closed;
    return true;
}

void RundownProtection::close() {
    const Lock lock(*this);
    m_state = State::Closed;
}

void RundownProtection::waitUntilEmpty() const {
    waitForOthers(Threads::All);
}

void RundownProtection::markDestroyed() {
    {
        const Lock lock(*this);
        m_state = State::Destroyed;
    }
    // Not for OnCanAccept: the accept thread does not use the server after it.
    waitForOthers(Threads::Attached);
}

void RundownProtection::enter(Entry& entry, bool isAcceptor) {
    entry.m_isAcceptor = isAcceptor;
    entry.m_thread = port::currentThreadId();
    entry.m_next = m_entries;
    m_entries = &entry;
}

bool RundownProtection::hasOthersInside(Threads threads) const {
    const Lock lock(*this);
    for (const Entry* entry = m_entries; entry; entry = entry->m_next) {
        const bool counts = threads == Threads::All || !entry->m_isAcceptor;
        if (counts && entry->m_thread != port::currentThreadId()) return true;
    }
    return false;
}

void RundownProtection::waitForOthers(Threads threads) const {
    while (hasOthersInside(threads)) port::sleep(1);
}
