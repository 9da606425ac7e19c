// NySeSessionLockPtrArray: a table of grants.
#pragma once

#include "NyServer/records/NySeSessionLock.h"

// The holders of one lock, sorted by session number; a session that was granted the lock twice is
// in it twice. Any number of threads may call the const operations of one table at a time, while
// nobody changes it or its entries.
class NYSERVER_API NySeSessionLockPtrArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeSessionLockPtrArray, NySeSessionLock)
};
