// Ports that follow each other, and listeners there.
#pragma once

#include <random>
#include <stdexcept>
#include <vector>

#include "tests/socket/Peers.h"

// Listens there, or is invalid when somebody does.
inline NySe::UniqueSocket listenOn(int number) {
    NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in address = peers::loopbackAddress(static_cast<unsigned int>(number));
    if (!port::bindSocket(socket.get(), address) || !port::listenOn(socket.get(), 5))
        socket.reset();
    return socket;
}

// The first of `count` free ports, at most 47, another row at each call. They are below those that
// the system gives to who asks for any, and this process's own: it listens on the port before them
// as a mark.
inline int freeRow(int count) {
    constexpr int kFirst = 10000;
    constexpr int kRows = 200;
    constexpr int kRow = 48;
    static const peers::WinsockSession winsock;
    static std::vector<NySe::UniqueSocket> marks;
    static unsigned int next = std::random_device()();
    for (int attempt = 0; attempt < kRows; ++attempt) {
        const int mark = kFirst + static_cast<int>(next++ % kRows) * kRow;
        NySe::UniqueSocket marking = listenOn(mark);
        if (!marking) continue;
        int found = 0;
        while (found < count && listenOn(mark + 1 + found)) ++found;
        if (found < count) continue;
        marks.push_back(std::move(marking));
        return mark + 1;
    }
    throw std::runtime_error("no row of free ports");
}
