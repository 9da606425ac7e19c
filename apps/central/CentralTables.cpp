#include "apps/central/CentralTables.h"

#include <algorithm>

namespace {

// Notification ports are handed out from here upwards, each to one user at a time.
constexpr LONG kFirstPort = 42100;

}  // namespace

LONG CentralTables::newSessionNumber() {
    const std::lock_guard guard(m_lock);
    return ++m_lastSessionNumber;
}

NySeUser CentralTables::registerUser(const NySeUser& user, LONG sessionNumber) {
    const std::lock_guard guard(m_lock);
    removeUser(sessionNumber);
    NySeUser completed(user);
    completed.setSessionNumber(sessionNumber);
    completed.setPort(freePort());
    m_users.add(completed.clone());
    return completed;
}

void CentralTables::endSession(LONG sessionNumber) {
    const std::lock_guard guard(m_lock);
    removeUser(sessionNumber);
}

NySeUserPtrArray CentralTables::users() const {
    const std::lock_guard guard(m_lock);
    return m_users;
}

LONG CentralTables::freePort() const {
    const auto taken = [this](LONG port) {
        for (INT_PTR i = 0; i < m_users.GetSize(); ++i) {
            if (m_users[i]->getPort() == port) return true;
        }
        return false;
    };
    LONG port = kFirstPort;
    while (taken(port)) ++port;
    return port;
}

void CentralTables::removeUser(LONG sessionNumber) {
    NySeUser probe;
    probe.setSessionNumber(sessionNumber);
    const INT_PTR index = m_users.lookFor(&probe, 2);
    if (index >= 0) m_users.RemoveAt(index);
}
