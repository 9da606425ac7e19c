// The scalar reader: one read that returns all of it, or nothing.
#include "fuzz/Drip.h"
#include "fuzz/Require.h"
#include "NyServer/framing/NySeReply.h"

template <class Scalar>
static void check(const uint8_t* bytes, size_t size) {
    const Drip drip(bytes, size);
    const size_t comes = std::min(size, static_cast<size_t>(drip.atOnce()));
    const Scalar before = 0;
    Scalar value = before;
    require(NySe::receiveScalar(value, drip) == (comes >= sizeof value), "it is all or nothing");
    const size_t read = std::min(comes, sizeof value);
    require(std::memcmp(&value, bytes, read) == 0, "the value is the first bytes");
    require(drip.left().size() == size - read, "one read is made");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    check<BYTE>(bytes, size);
    check<LONG>(bytes, size);
    check<double>(bytes, size);
    return 0;
}
