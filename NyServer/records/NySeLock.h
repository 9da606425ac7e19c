// NySeLock: one named lock and its holders.
#pragma once

#include <array>

#include "NyServer/records/NySeSessionLockPtrArray.h"

class NySeUser;

// Users are identified by their session number alone. A copy or clone has the name but not the
// holders. One object may be used by one thread at a time.
//
// Compare keys: 1 lock name without letter case.
class NYSERVER_API NySeLock : public QoObject2 {
    NYSE_DECLARE_RECORD(NySeLock)

  public:
    NYSERVER_INLINE const CString& getStrLockName() const { return m_strLockName; }
    NYSERVER_INLINE void setStrLockName(const CString& lockName) { m_strLockName = lockName; }

    // One entry for each grant, owned by this lock.
    NYSERVER_INLINE NySeSessionLockPtrArray& getHolders() { return m_holders; }
    NYSERVER_INLINE const NySeSessionLockPtrArray& getHolders() const { return m_holders; }

    // Returns whether `mode` (NySe::ShareMode) may be granted in addition to the current holders:
    // not if it requests access (access1 or access2) and a holder has exclude1 or exclude2. The
    // exclude bits of `mode` itself are not compared with the holders, and an earlier grant of the
    // same session counts like any other.
    bool seekShareMode(unsigned int mode) const;

    // Removes all grants of that user's session, if any.
    void removeUser(const NySeUser& user);

    // Writes the holders as one object at the position of `file` and advances it. Throws
    // CMemoryException if the file cannot grow.
    void writeUserArray(CMemFile& file) const;

  private:
    CString m_strLockName;
    NySeSessionLockPtrArray m_holders;
};
