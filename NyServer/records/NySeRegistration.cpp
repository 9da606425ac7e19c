// Registers every record class, in one source so that the order is this one.
#include "NyServer/records/NySeUserPtrArray.h"

IMPLEMENT_SERIAL(NySeUser, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeUserPtrArray, QoArraySerial2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
