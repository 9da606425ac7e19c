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
    NYSERVER_INLINE const LONG& getSessionNumber() const { return m_fields.sessionNumber; }
    NYSERVER_INLINE void setSessionNumber(const LONG& sessionNumber) {
        m_fields.sessionNumber = sessionNumber;
    }

    // The share mode of this grant: the bits that NySeLock::seekShareMode reads, and any others.
    NYSERVER_INLINE unsigned int getLockState() const { return m_fields.lockState; }
    NYSERVER_INLINE void setLockState(unsigned int lockState) { m_fields.lockState = lockState; }

    // The fields, in the wire order.
    struct Fields {
        unsigned int lockState = 0;
        LONG sessionNumber = 0;
    };
    NYSERVER_INLINE const Fields& fields() const { return m_fields; }

  private:
    Fields m_fields;
};
