// NySeUserPtrArray: a table of users.
#pragma once

#include "NyServer/records/NySeUser.h"

class NySeSessionLockPtrArray;

// Sorted by user name. Any number of threads may call the const operations of one table at a time,
// while nobody changes it or its users.
class NYSERVER_API NySeUserPtrArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeUserPtrArray, NySeUser)

  public:
    // Return the first user with that session or name (without letter case), borrowed from the
    // table; null if there is none.
    NySeUser* findBySessionNumber(int sessionNumber) const;
    NySeUser* findByUserName(const CString& userName) const;

    // Adds the users in `users`, not copies, to which `sessions` refers, once for each session
    // lock, in sorted order; session locks without a user are skipped. REQUIRES: this table does
    // not own its records.
    void addFromSessionArray(NySeUserPtrArray& users, NySeSessionLockPtrArray& sessions);
};
