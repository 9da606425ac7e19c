// NySeLockArray: the table of locks, which grants and releases them.
#pragma once

#include "NyServer/records/NySeLock.h"

// A lock is in the table while it has holders. Lock names are the same when they differ only in
// letter case; users are known by their session number alone. Locks that addLock makes go to the
// end, so that the table need not be in the order of the names. Any number of threads may call the
// const operations of one table at a time, while nobody changes it or its locks.
class NYSERVER_API NySeLockArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeLockArray, NySeLock)

  public:
    // The index of the first lock of that name; -1 when there is none.
    INT_PTR lookForLockName(const CString& name) const;

    // Grants the lock to the user's session under `mode`, as one more holder even when the session
    // holds it already. Returns the index of the lock; -1, with nothing changed, when a holder's
    // mode forbids it (NySeLock::seekShareMode).
    INT_PTR addLock(const CString& name, const NySeUser& user, unsigned int mode);

    // Drops what the user's session holds of the lock of `lock`'s name; the lock goes with its last
    // holder. Gives `lock` the stored spelling of the name. True when there is such a lock, also
    // when the session held nothing of it; false otherwise.
    bool removeLock(NySeLock& lock, const NySeUser& user);

    // The same for every lock in the table.
    void deleteLockByUser(const NySeUser& user);

  private:
    // True when the lock went with its last holder.
    bool deleteUnheld(INT_PTR index);
};
