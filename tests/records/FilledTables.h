// One table of each class, each with a hundred records, and what its finders must find there.
#pragma once

#include <string>

#include "tests/records/RecordSamples.h"

class FilledTables {
  public:
    static constexpr int kRecords = 100;

    FilledTables() {
        for (int i = 0; i < kRecords; ++i) {
            const NySeUser user = makeUser(nameOf(i), i);
            m_locks.addLock(nameOf(i), user, kExclusive);
            m_users.append(user.clone());
            m_connections.openConnection(nameOf(i));
            m_names[i] = nameOf(i);
        }
        m_missing = nameOf(kRecords);
    }

    // Of the finders of all tables: whether they find the record `i` as its own, and nothing else.
    bool findsUser(int i) const {
        return m_users.findByUserName(m_names[i]) == m_users.GetAt(i) &&
               m_users.findBySessionNumber(i) == m_users.GetAt(i) &&
               m_users.findByUserName(m_missing) == nullptr &&
               m_users.findBySessionNumber(kRecords) == nullptr;
    }
    bool findsConnection(int i) const {
        return m_connections.findByConnection(m_names[i]) == m_connections.GetAt(i) &&
               m_connections.lookForConnection(m_names[i]) == i &&
               m_connections.findById(i) == m_connections.GetAt(i) &&
               m_connections.lookForId(i) == i &&
               m_connections.lookForConnection(m_missing) == -1 &&
               m_connections.lookForId(kRecords) == -1;
    }
    bool findsLock(int i) const {
        return m_locks.lookForLockName(m_names[i]) == i && m_locks.lookForLockName(m_missing) == -1;
    }
    bool findsSession(int i) const {
        const NySeSessionLock probe = makeSessionLock(i, 0);
        const NySeSessionLockPtrArray& holders = m_locks.GetAt(i)->getHolders();
        return holders.lookFor(&probe, 1) == 0 && holders.find(&probe, 1) == holders.GetAt(0);
    }
    bool findsAll(int i) const {
        return findsUser(i) && findsConnection(i) && findsLock(i) && findsSession(i);
    }

    static constexpr unsigned int kExclusive = 0x18;

    // So long that a copy needs memory, and more than a free list has.
    static CString nameOf(int number) {
        return CString((std::string(200, 'n') + "/" + std::to_string(number)).c_str());
    }

    NySeUserPtrArray m_users;
    NySeConnectionArray m_connections;
    NySeLockArray m_locks;

  private:
    CString m_names[kRecords];
    CString m_missing;
};
