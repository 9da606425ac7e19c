// NySeUserPtrArray: a table of users.
#pragma once

#include "NyServer/records/NySeUser.h"

// Sorted by user name. One table may be used by one thread at a time.
class NYSERVER_API NySeUserPtrArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeUserPtrArray, NySeUser)

  public:
    // The first user of that session or name (without letter case), borrowed from the table; null
    // when there is none.
    NySeUser* findBySessionNumber(int sessionNumber) const;
    NySeUser* findByUserName(const CString& userName) const;
};
