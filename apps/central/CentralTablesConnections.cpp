// The connections among the server's tables.
#include "apps/central/CentralTables.h"

#include "NyServer/detail/ExceptionBoundary.h"

LONG CentralTables::openConnection(LONG session, const CString& name) {
    const std::lock_guard guard(m_lock);
    Session* const opener = findSession(session);
    if (opener == nullptr || opener->opens >= m_limits.opensPerSession || isTooLong(name))
        return -1;
    const LONG id = m_connections.openConnection(name);
    // One that nobody has open would never be closed.
    if (!NySe::succeeds([&] { m_openers.open(id, session); })) {
        m_connections.closeConnection(id);
        return -1;
    }
    ++opener->opens;
    announce(notifyConnectionOpened, *m_connections.findById(id), session);
    return id;
}

void CentralTables::closeConnection(LONG session, LONG id) {
    const std::lock_guard guard(m_lock);
    closeOnce(session, id);
}

void CentralTables::closeOnce(LONG session, LONG id) {
    if (!m_openers.close(id, session)) return;
    --findSession(session)->opens;
    // Told before it is done: the last close takes the record away.
    NySe::succeeds([&] {
        NySeConnection closed(*m_connections.findById(id));
        closed.setRefCount(closed.getRefCount() - 1);
        announce(notifyConnectionClosed, closed, session);
    });
    m_connections.closeConnection(id);
}

void CentralTables::closeAllOf(LONG session) {
    LONG from = 0;
    while (const auto id = m_openers.nextOpenedBy(session, from)) {
        closeOnce(session, *id);
        from = *id;
    }
}

std::string CentralTables::connectionOpeners(LONG id) const {
    const std::lock_guard guard(m_lock);
    std::set<LONG> sessions;
    for (const auto& [session, count] : m_openers.of(id)) sessions.insert(session);
    return archivedUsersOf(sessions);
}

std::string CentralTables::connections() const {
    const std::lock_guard guard(m_lock);
    return archived(m_connections);
}

void CentralTables::sendToOpeners(LONG sender, LONG connection, const std::string& object) {
    const std::lock_guard guard(m_lock);
    const Openers::Counts& openers = m_openers.of(connection);
    std::vector<LONG> receivers = usersBut(sender);
    std::erase_if(receivers, [&](LONG session) { return !openers.contains(session); });
    send(notifyConnectionData, object, receivers);
}
