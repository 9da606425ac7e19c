// Ports that follow each other, for listeners that are started later.
#pragma once

#include <stdexcept>

#include "tests/socket/Peers.h"

inline bool isFreePort(int port) {
    const UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    address.sin_port = ::htons(static_cast<unsigned short>(port));
    return ::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

// The first of `count` free ports, at most 48, another row at each call. They are below those that
// the system gives to who asks for any, so that nobody gets them meanwhile, and every process looks
// first in a place of its own.
inline int freeRow(int count) {
    constexpr int kFirst = 10000;
    constexpr int kRows = 200;
    constexpr int kRow = 48;
    const peers::WinsockSession winsock;
    static int next = static_cast<int>(::GetCurrentProcessId() / 4 * 7 % kRows);
    for (int attempt = 0; attempt < kRows; ++attempt) {
        const int first = kFirst + next++ % kRows * kRow;
        int found = 0;
        while (found < count && isFreePort(first + found)) ++found;
        if (found == count) return first;
    }
    throw std::runtime_error("no row of free ports");
}
