// The connections among the server's tables.
#include "apps/central/CentralTables.h"

LONG CentralTables::openConnection(LONG session, const CString& name) {
    const std::lock_guard guard(m_lock);
    Session* const opener = findSession(session);
    if (opener == nullptr || opener->opens >= m_limits.opensPerSession || isTooLong(name))
        return -1;
    const LONG id = m_connections.openConnection(name);
    m_openers.open(id, session);
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
    NySeConnection closed(*m_connections.findById(id));
    closed.setRefCount(closed.getRefCount() - 1);
    m_connections.closeConnection(id);
    announce(notifyConnectionClosed, closed, session);
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
    std::vector<LONG> receivers;
    for (const auto& [session, count] : m_openers.of(connection)) {
        if (session != sender) receivers.push_back(session);
    }
    send(notifyConnectionData, object, receivers);
}
