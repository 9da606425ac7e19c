// The locks among the server's tables.
#include "apps/central/CentralTables.h"

namespace {

NySeUser ofSession(LONG session) {
    NySeUser user;
    user.setSessionNumber(session);
    return user;
}

bool isHeldBy(const NySeLock& lock, LONG session) {
    NySeSessionLock probe;
    probe.setSessionNumber(session);
    return lock.getHolders().lookFor(&probe, 1) >= 0;
}

}  // namespace

bool CentralTables::lock(LONG session, const CString& name, unsigned int mode) {
    const std::lock_guard guard(m_lock);
    const INT_PTR index = m_locks.addLock(name, ofSession(session), mode);
    if (index < 0) return false;
    announce(notifyLockGranted, *m_locks[index], session);
    return true;
}

void CentralTables::unlock(LONG session, const CString& name) {
    const std::lock_guard guard(m_lock);
    releaseLock(m_locks.lookForLockName(name), session);
}

std::optional<std::string> CentralTables::lockHolders(const CString& name) const {
    const std::lock_guard guard(m_lock);
    const INT_PTR index = m_locks.lookForLockName(name);
    if (index < 0) return std::nullopt;
    // A session with two grants is one holder: an archived table must not hold a record twice.
    const NySeSessionLockPtrArray& grants = m_locks[index]->getHolders();
    std::set<LONG> sessions;
    for (INT_PTR i = 0; i < grants.GetSize(); ++i) sessions.insert(grants[i]->getSessionNumber());
    return archivedUsersOf(sessions);
}

std::string CentralTables::locks() const {
    const std::lock_guard guard(m_lock);
    return archived(m_locks);
}

// A session without grants of the lock changes nothing; nor does an index below 0.
void CentralTables::releaseLock(INT_PTR index, LONG session) {
    if (index < 0 || !isHeldBy(*m_locks[index], session)) return;
    NySeLock released(*m_locks[index]);
    m_locks.removeLock(released, ofSession(session));
    const INT_PTR left = m_locks.lookForLockName(released.getStrLockName());
    announce(notifyLockReleased, left < 0 ? released : *m_locks[left], session);
}

void CentralTables::releaseLocksOf(LONG session) {
    for (INT_PTR i = m_locks.GetSize(); i-- > 0;) releaseLock(i, session);
}
