// The message record.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeMessage.h"

FUZZ_RECORD(NySeMessage)
