#include "bench/wire/RawServer.h"

#include <array>
#include <cstring>

#include "bench/wire/RawCalls.h"
#include "NyServer/framing/NySeActions.h"

namespace {

constexpr long kTimeOut = 15;  // seconds, as long as the library waits

// Returns the size of the first request; 0 if it is incomplete.
size_t answerFirst(SOCKET socket, const char* bytes, size_t held) {
    LONG header[2];
    if (held < sizeof header) return 0;
    std::memcpy(header, bytes, sizeof header);
    const size_t length = sizeof header + static_cast<size_t>(header[1]);
    if (held < length) return 0;
    const LONG alive = NySe::kAliveAnswer;
    const char granted = 1;
    if (header[0] == NySe::actionIsAlive)
        port::send(socket, reinterpret_cast<const char*>(&alive), sizeof alive, 0);
    else if (header[0] == NySe::actionLock)
        port::send(socket, &granted, sizeof granted, 0);
    return length;
}

}  // namespace

void bench::answerRequests(peers::Connection& connection) {
    std::array<char, 4096> buffer;
    size_t held = 0;
    for (;;) {
        const int count = port::receive(connection.socket(), buffer.data() + held,
                                        static_cast<int>(buffer.size() - held), 0);
        if (count < 1) return;
        held += static_cast<size_t>(count);
        size_t taken = 0;
        while (const size_t length =
                   answerFirst(connection.socket(), buffer.data() + taken, held - taken))
            taken += length;
        std::memmove(buffer.data(), buffer.data() + taken, held - taken);
        held -= taken;
    }
}

bool bench::exchange(SOCKET socket, const std::string& request, int answerBytes) {
    char answer[sizeof(LONG)];
    return sendRaw(socket, request) && awaitReadable(socket, kTimeOut) &&
           receiveRaw(socket, answer, answerBytes);
}
