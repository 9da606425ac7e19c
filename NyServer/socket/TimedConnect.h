// Connecting with a deadline. Header only, so that programs use it as well as the library.
#pragma once

#include "NyServer/base/port/Port.h"

namespace socketcalls {

// Calls connect once. pending only for a non-blocking socket. After failed, port::lastSocketError
// has the reason.
inline port::Readiness startConnect(SOCKET socket, const sockaddr_in& peer) {
    if (port::connectTo(socket, peer)) return port::Readiness::ready;
    return port::lastSocketError() == WSAEWOULDBLOCK ? port::Readiness::pending
                                                     : port::Readiness::failed;
}

// Waits for the end of a pending connect. pending: there was no answer when `isOver()`, which is
// called every 20 ms, returned true.
template <class IsOver>
port::Readiness awaitConnect(SOCKET socket, IsOver isOver) {
    for (;;) {
        const port::Readiness readiness = port::waitForConnect(socket, 20'000);
        if (readiness != port::Readiness::pending || isOver()) return readiness;
    }
}

// Makes the socket non-blocking, connects it and waits as awaitConnect does.
template <class IsOver>
port::Readiness connectUntil(SOCKET socket, const sockaddr_in& peer, IsOver isOver) {
    port::setBlocking(socket, false);
    const port::Readiness readiness = startConnect(socket, peer);
    return readiness == port::Readiness::pending ? awaitConnect(socket, isOver) : readiness;
}

}  // namespace socketcalls
