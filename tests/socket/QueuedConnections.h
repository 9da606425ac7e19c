#pragma once

#include <vector>

#include "tests/socket/LocalConnection.h"

namespace peers {

// Connects, at most so often, until one connect is left without an answer: that one is not in the
// result.
inline std::vector<UniqueSocket> connectWhileAnswered(unsigned int port, size_t most) {
    const sockaddr_in address = loopbackAddress(port);
    std::vector<UniqueSocket> answered;
    while (answered.size() < most) {
        UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
        socketcalls::setBlockingMode(socket.get(), 1);
        ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        if (!socketcalls::isWritable(socket.get(), 0, 500000)) break;
        answered.push_back(std::move(socket));
    }
    return answered;
}

}  // namespace peers
