// The session lock record.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeSessionLock.h"

FUZZ_RECORD(NySeSessionLock)
