// The table of locks, with their holders.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeLockArray.h"

FUZZ_RECORD(NySeLockArray)
