// The table of session locks.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeSessionLockPtrArray.h"

FUZZ_RECORD(NySeSessionLockPtrArray)
