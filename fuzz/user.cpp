// The user record.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeUser.h"

FUZZ_RECORD(NySeUser)
