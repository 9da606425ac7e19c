// The lock record, with its holders.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeLock.h"

FUZZ_RECORD(NySeLock)
