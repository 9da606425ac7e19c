// Ports that follow each other, and listeners there.
#pragma once

#include <stdexcept>
#include <vector>

#include "tests/socket/Peers.h"

// Listens there, or is invalid when somebody does.
inline NySe::UniqueSocket listenOn(int port) {
    NySe::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    address.sin_port = ::htons(static_cast<unsigned short>(port));
    if (::bind(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.get(), 5) != 0)
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
    static int next = static_cast<int>(::GetCurrentProcessId() / 4 * 7 % kRows);
    for (int attempt = 0; attempt < kRows; ++attempt) {
        const int mark = kFirst + next++ % kRows * kRow;
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
