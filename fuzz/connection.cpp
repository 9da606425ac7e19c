// The connection record.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeConnection.h"

FUZZ_RECORD(NySeConnection)
