// NySeLockArray: the table of locks, which grants and releases them.
#pragma once

#include "NyServer/records/NySeLock.h"

// A lock is in the table while it has holders. Lock names are the same when they differ only in
// letter case; users are identified by their session number alone. addLock appends new locks, so
// the table need not be sorted by name. Any number of threads may call the const operations of one
// table at a time, while nobody changes it or its locks.
class NYSERVER_API NySeLockArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeLockArray, NySeLock)

  public:
    // Returns the index of the first lock with that name; -1 if there is none.
    INT_PTR lookForLockName(const CString& name) const;

    // Grants the lock to the user's session under `mode`, as an additional holder even if the
    // session already holds it. Returns the index of the lock; -1, with nothing changed, if the
    // current holders do not allow it (NySeLock::seekShareMode).
    INT_PTR addLock(const CString& name, const NySeUser& user, unsigned int mode);

    // Removes the session's grants of the lock with the name of `lock`, and the lock itself if no
    // holder is left. Sets the name of `lock` to the stored spelling. Returns whether there is such
    // a lock, even if the session did not hold it.
    bool removeLock(NySeLock& lock, const NySeUser& user);

    // Removes the session's grants of all locks, and the locks without a holder.
    void deleteLockByUser(const NySeUser& user);

  private:
    // Deletes the lock if it has no holder. Returns whether it did.
    bool deleteUnheld(INT_PTR index);
};
