// The table of connections, with its ids.
#include "fuzz/RecordCheck.h"
#include "NyServer/records/NySeConnectionArray.h"

FUZZ_RECORD(NySeConnectionArray)
