// A frame that the listener receives and posts to the window, and that the window decodes.
#include "fuzz/Drip.h"
#include "fuzz/HeldMemory.h"
#include "fuzz/Require.h"
#include "NyServer/framing/NySeNotification.h"
#include "NyServer/framing/NySeReply.h"
#include "tests/support/ArchiveBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const Drip drip(bytes, size);
    int action = 0;
    NySe::collect(action, drip);
    CMemFile body;
    const HeldMemory held;
    LONG announced = 0;
    if (NySe::collect(announced, drip) == int{sizeof announced})
        NySe::receiveBody(body, announced, drip);
    held.requireAtMost(3 * (size + NySe::kReceiveStep));
    const bool isOne = NySe::isNotification(action);
    const Bytes payload = isOne ? contentsOf(body) : Bytes();
    NySeMemFile message;
    NySe::wrapNotification(message, static_cast<NySe::ActionType>(action), body);
    Bytes posted = contentsOf(message);
    const NySe::FoundNotification found = NySe::findNotification(posted.data(), posted.size());
    require(found.action == (isOne ? action : NySe::noAction), "the action is the sender's");
    require(Bytes(found.payload, found.payload + found.length) == payload, "so is the payload");
    // Anything may be posted to the window.
    posted.assign(bytes, bytes + size);
    const UINT length = NySe::findNotification(posted.data(), size).length;
    require(length == 0 || length + NySe::kActionHeaderBytes <= size, "the payload lies inside");
    return 0;
}
