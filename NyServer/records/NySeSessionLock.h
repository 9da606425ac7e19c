// NySeSessionLock: one grant of a lock to one user session.
#pragma once

#include "NyServer/records/NySeRecord.h"

// Which session holds the lock and under which share mode. One object may be used by one thread at
// a time.
//
// Compare keys: 1 session number.
class NYSERVER_API NySeSessionLock : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeSessionLock)

  public:
    // Of the user who holds the lock.
    const LONG& getSessionNumber() const { return m_sessionNumber; }
    void setSessionNumber(const LONG& sessionNumber) { m_sessionNumber = sessionNumber; }

    // The share mode of this grant: the bits that NySeLock::seekShareMode reads, and any others.
    unsigned int getLockState() const { return m_lockState; }
    void setLockState(unsigned int lockState) { m_lockState = lockState; }

  private:
    LONG m_sessionNumber = 0;
    unsigned int m_lockState = 0;
};
