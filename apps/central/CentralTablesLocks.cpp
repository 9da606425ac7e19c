// The locks among the server's tables.
#include "apps/central/CentralTables.h"

namespace {

NySeUser ofSession(LONG session) {
    NySeUser user;
    user.setSessionNumber(session);
    return user;
}

size_t grantsOf(const NySeLock& lock, LONG session) {
    NySeSessionLock probe;
    probe.setSessionNumber(session);
    const NySeSessionLockPtrArray& holders = lock.getHolders();
    return static_cast<size_t>(holders.searchIfSorted(&probe, true) -
                               holders.searchIfSorted(&probe, false));
}

}  // namespace

bool CentralTables::lock(LONG session, const CString& name, unsigned int mode) {
    const std::lock_guard guard(m_lock);
    if (findSession(session) == nullptr || isTooLong(name)) return false;
    const INT_PTR known = m_locks.lookForLockName(name);
    if (!mayBeGranted(known < 0 ? nullptr : m_locks[known], session)) return false;
    const INT_PTR index = m_locks.addLock(name, ofSession(session), mode);
    if (index < 0) return false;
    if (grantsOf(*m_locks[index], session) == 1) ++findSession(session)->locks;
    announce(notifyLockGranted, *m_locks[index], session);
    return true;
}

// As far as the limits go. `lock`: null when nobody holds it.
bool CentralTables::mayBeGranted(const NySeLock* lock, LONG session) const {
    const size_t own = lock == nullptr ? 0 : grantsOf(*lock, session);
    const size_t all = lock == nullptr ? 0 : static_cast<size_t>(lock->getHolders().GetSize());
    if (lock == nullptr && static_cast<size_t>(m_locks.GetSize()) >= m_limits.locksInAll)
        return false;
    if (own == 0 && m_sessions.at(session).locks >= m_limits.locksPerSession) return false;
    return own < m_limits.grantsPerSession && all < m_limits.grantsPerLock;
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
    if (index < 0 || grantsOf(*m_locks[index], session) == 0) return;
    NySeLock released(*m_locks[index]);
    m_locks.removeLock(released, ofSession(session));
    --findSession(session)->locks;
    const INT_PTR left = m_locks.lookForLockName(released.getStrLockName());
    announce(notifyLockReleased, left < 0 ? released : *m_locks[left], session);
}

// Those that are left without a holder go at the end, in one pass: to look each up by its name
// would take the square of their number, with everybody waiting.
void CentralTables::releaseLocksOf(LONG session) {
    const NySeUser leaver = ofSession(session);
    for (INT_PTR i = 0; i < m_locks.GetSize(); ++i) {
        NySeLock& lock = *m_locks[i];
        if (grantsOf(lock, session) == 0) continue;
        lock.removeUser(leaver);
        announceIfPossible(notifyLockReleased, lock, session);
    }
    m_locks.deleteLockByUser(leaver);
}
