// NySeSessionLock: one grant of a lock to one user session.
#pragma once

#include "NyServer/records/detail/NySeRecordStore.h"
#include "NyServer/records/NySeRecord.h"

// Which session holds the lock and under which share mode. One object may be used by one thread at
// a time.
//
// Compare keys: 1 session number.
class NYSERVER_API NySeSessionLock : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeSessionLock)

  public:
    // Of the user who holds the lock.
    NYSERVER_INLINE const LONG& getSessionNumber() const { return m_sessionNumber; }
    NYSERVER_INLINE void setSessionNumber(const LONG& sessionNumber) {
        m_sessionNumber = sessionNumber;
    }

    // The share mode of this grant: the bits that NySeLock::seekShareMode reads, and any others.
    NYSERVER_INLINE unsigned int getLockState() const { return m_lockState; }
    NYSERVER_INLINE void setLockState(unsigned int lockState) { m_lockState = lockState; }

    // What Serialize writes, into an archive or what takes its place. The lock state comes first:
    // that is the wire order.
    template <class TARGET>
    void storeFields(TARGET& target) const {
        NySe::storeValues(target, m_lockState, m_sessionNumber);
    }

  private:
    LONG m_sessionNumber = 0;
    unsigned int m_lockState = 0;
};
