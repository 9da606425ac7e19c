// The message file: the arguments read from a message make a message that reads the same.
#include "fuzz/FuzzedMessage.h"
#include "fuzz/HeldMemory.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    for (const char* arguments : {"i", "s", "u", "m", "si", "iim"}) {
        const Bytes message(bytes, bytes + size);
        const HeldMemory held;
        const Bytes copy = copyMessage(message, arguments);
        held.requireAtMost(8 * size + NySe::kReceiveStep);
        if (copy.empty()) continue;
        LONG header[2];
        std::memcpy(header, copy.data(), sizeof header);
        require(header[0] == NySe::actionLock, "the action stands first");
        require(sizeof header + static_cast<size_t>(header[1]) == copy.size(), "then the length");
        require(copyMessage(copy, arguments) == copy, "what is written is what is read");
    }
    return 0;
}
