#pragma once

#include "NyServer/base/port/Port.h"

namespace apps {

// Returns whether both ends of the connection are this socket. A connect to a free port in the
// range from which the system chooses local ports may connect the socket to itself. False for a
// socket that is not connected.
inline bool isConnectedToItself(SOCKET socket) {
    const sockaddr_in own = port::localAddress(socket);
    const sockaddr_in peer = port::peerAddress(socket);
    return peer.sin_port != 0 && own.sin_port == peer.sin_port &&
           own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

}  // namespace apps
