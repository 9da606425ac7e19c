// The record reader: an object of the expected class, which writes and reads the same, or none.
#include "fuzz/Drip.h"
#include "fuzz/FuzzedMessage.h"
#include "fuzz/HeldMemory.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

using Object = std::unique_ptr<CObject>;

static void check(const CRuntimeClass* expected, const uint8_t* bytes, size_t size) {
    const HeldMemory held;
    CMemFile reply;
    if (!NySe::receiveMessage(reply, Drip(bytes, size))) return;
    const Object object(NySe::readReplyObject(reply, expected));
    held.requireAtMost(32 * size + 4 * NySe::kReceiveStep);
    require(!object || !expected || object->IsKindOf(expected), "it is what was asked for");
    const Object fresh((expected ? expected : RUNTIME_CLASS(NySeUser))->CreateObject());
    requireReads(object ? *object : *fresh, expected);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    check(RUNTIME_CLASS(NySeConnectionArray), bytes, size);
    check(RUNTIME_CLASS(NySeLockArray), bytes, size);
    check(RUNTIME_CLASS(NySeUser), bytes, size);
    check(RUNTIME_CLASS(NySeUserPtrArray), bytes, size);
    check(nullptr, bytes, size);
    return 0;
}
