// The table of users.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeUserPtrArray.h"

FUZZ_RECORD(NySeUserPtrArray)
