#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace apps {

// Returns whether both ends of the connection are this socket. A connect to a free port in the
// range from which the system chooses local ports may connect the socket to itself. False for a
// socket that is not connected.
inline bool isConnectedToItself(SOCKET socket) {
    sockaddr_in own{};
    sockaddr_in peer{};
    int ownLength = sizeof own;
    int peerLength = sizeof peer;
    return ::getsockname(socket, reinterpret_cast<sockaddr*>(&own), &ownLength) == 0 &&
           ::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &peerLength) == 0 &&
           own.sin_port == peer.sin_port && own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

}  // namespace apps
