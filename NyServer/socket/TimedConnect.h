// Connecting and waiting with a deadline. Header only, so that programs use it as well as the
// library.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace socketcalls {

enum class Readiness { pending, ready, failed };

// Waits until the socket is writable, or a pending connect of it has ended, but not longer than
// `microseconds`.
inline Readiness waitWritable(SOCKET socket, long microseconds) {
    fd_set writable{1, {socket}};
    fd_set failed{1, {socket}};
    timeval timeOut{0, microseconds};
    if (::select(0, nullptr, &writable, &failed, &timeOut) == SOCKET_ERROR || failed.fd_count > 0)
        return Readiness::failed;
    return writable.fd_count > 0 ? Readiness::ready : Readiness::pending;
}

// Calls connect once. pending only for a non-blocking socket. After failed, WSAGetLastError has the
// reason.
inline Readiness startConnect(SOCKET socket, const sockaddr_in& peer) {
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&peer), sizeof peer) == 0)
        return Readiness::ready;
    return ::WSAGetLastError() == WSAEWOULDBLOCK ? Readiness::pending : Readiness::failed;
}

// Waits for the end of a pending connect. pending: there was no answer when `isOver()`, which is
// called every 20 ms, returned true.
template <class IsOver>
Readiness awaitConnect(SOCKET socket, IsOver isOver) {
    for (;;) {
        const Readiness readiness = waitWritable(socket, 20'000);
        if (readiness != Readiness::pending || isOver()) return readiness;
    }
}

// Makes the socket non-blocking, connects it and waits as awaitConnect does.
template <class IsOver>
Readiness connectUntil(SOCKET socket, const sockaddr_in& peer, IsOver isOver) {
    u_long nonBlocking = 1;
    ::ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking);
    const Readiness readiness = startConnect(socket, peer);
    return readiness == Readiness::pending ? awaitConnect(socket, isOver) : readiness;
}

}  // namespace socketcalls
