// LostSessions: the sessions whose listeners have stopped answering.
#pragma once

#include <afx.h>

#include <mutex>
#include <set>

// Any thread may call any of it. Whoever finds a listener dead adds its session; the session's own
// worker finds it here, ends and forgets it.
class LostSessions {
  public:
    void add(LONG session) {
        const std::lock_guard guard(m_lock);
        m_sessions.insert(session);
    }
    bool contains(LONG session) const {
        const std::lock_guard guard(m_lock);
        return m_sessions.count(session) != 0;
    }
    void forget(LONG session) {
        const std::lock_guard guard(m_lock);
        m_sessions.erase(session);
    }

  private:
    mutable std::mutex m_lock;
    std::set<LONG> m_sessions;
};
