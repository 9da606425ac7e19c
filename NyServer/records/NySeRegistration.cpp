// Registers every record class, in one source so that the order is this one.
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeMessage.h"
#include "NyServer/records/NySeSessionLockPtrArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

IMPLEMENT_SERIAL(NySeConnection, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeConnectionArray, QoArraySerial2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeLock, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeLockArray, QoArraySerial2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeMessage, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeUser, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeUserPtrArray, QoArraySerial2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeSessionLock, QoObject2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
IMPLEMENT_SERIAL(NySeSessionLockPtrArray, QoArraySerial2, VERSIONABLE_SCHEMA | NySe::kRecordSchema)
