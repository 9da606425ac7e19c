// The message reader: a length and that many bytes.
#include "fuzz/Drip.h"
#include "fuzz/HeldMemory.h"
#include "fuzz/Require.h"
#include "NyServer/framing/NySeReply.h"
#include "tests/support/ArchiveBytes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const Drip drip(bytes, size);
    CMemFile reply;
    const HeldMemory held;
    const bool complete = NySe::receiveMessage(reply, drip);
    held.requireAtMost(3 * (size + NySe::kReceiveStep));
    require(reply.GetPosition() == 0, "the reply stands at its start");
    const Bytes got = contentsOf(reply);
    LONG announced = 0;
    const bool hasLength = size >= sizeof announced && drip.atOnce() >= 4;
    if (hasLength) std::memcpy(&announced, bytes, sizeof announced);
    const size_t wanted = static_cast<size_t>(std::max<LONG>(announced, 0));
    require(complete == (hasLength && got.size() == wanted), "complete is what was announced");
    const size_t there = hasLength ? std::min(wanted, size - sizeof announced) : 0;
    require(got.size() == there, "all that came is kept");
    require(there == 0 || std::memcmp(got.data(), bytes + 4, there) == 0, "and as it came");
    return 0;
}
