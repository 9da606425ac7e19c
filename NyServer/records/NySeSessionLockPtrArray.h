// NySeSessionLockPtrArray: a table of grants.
#pragma once

#include "NyServer/records/NySeSessionLock.h"

// The holders of one lock, sorted by session number; a session that was granted twice is in it
// twice. One table may be used by one thread at a time.
class NYSERVER_API NySeSessionLockPtrArray : public QoArraySerial2 {
    NYSE_DECLARE_TABLE(NySeSessionLockPtrArray, NySeSessionLock)
};
