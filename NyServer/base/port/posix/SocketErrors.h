// Winsock's numbers for the system's errors.
#pragma once

#include <algorithm>
#include <cerrno>

#include "NyServer/base/port/Port.h"

namespace port {

struct ErrorRow {
    int system;
    int winsock;
};

inline constexpr ErrorRow kErrors[] = {
    {EINTR, WSAEINTR},
    {EACCES, WSAEACCES},
    {EPERM, WSAEACCES},
    {EFAULT, WSAEFAULT},
    {EINVAL, WSAEINVAL},
    {EMFILE, WSAEMFILE},
    {ENFILE, WSAEMFILE},
    {EWOULDBLOCK, WSAEWOULDBLOCK},
    {EINPROGRESS, WSAEWOULDBLOCK},  // a pending connect
    {EALREADY, WSAEALREADY},
    {EBADF, WSAENOTSOCK},
    {ENOTSOCK, WSAENOTSOCK},
    {EDESTADDRREQ, WSAEDESTADDRREQ},
    {EMSGSIZE, WSAEMSGSIZE},
    {EPROTOTYPE, WSAEPROTOTYPE},
    {ENOPROTOOPT, WSAENOPROTOOPT},
    {EPROTONOSUPPORT, WSAEPROTONOSUPPORT},
    {ESOCKTNOSUPPORT, WSAESOCKTNOSUPPORT},
    {EOPNOTSUPP, WSAEOPNOTSUPP},
    {EPFNOSUPPORT, WSAEPFNOSUPPORT},
    {EAFNOSUPPORT, WSAEAFNOSUPPORT},
    {EADDRINUSE, WSAEADDRINUSE},
    {EADDRNOTAVAIL, WSAEADDRNOTAVAIL},
    {ENETDOWN, WSAENETDOWN},
    {ENETUNREACH, WSAENETUNREACH},
    {ENETRESET, WSAENETRESET},
    {ECONNABORTED, WSAECONNABORTED},
    {ECONNRESET, WSAECONNRESET},
    {ENOBUFS, WSAENOBUFS},
    {ENOMEM, WSAENOBUFS},
    {EISCONN, WSAEISCONN},
    {ENOTCONN, WSAENOTCONN},
    {EPIPE, WSAECONNRESET},  // a reset after the end of what the peer has sent
    {ESHUTDOWN, WSAESHUTDOWN},
    {ETIMEDOUT, WSAETIMEDOUT},
    {ECONNREFUSED, WSAECONNREFUSED},
    {EHOSTDOWN, WSAEHOSTDOWN},
    {EHOSTUNREACH, WSAEHOSTUNREACH},
};

// An error that Winsock has no number for is a failed system call: its own number may be that of
// another error of Winsock.
inline int winsockError(int error) {
    if (error == 0) return 0;
    const auto* const row = std::find_if(std::begin(kErrors), std::end(kErrors),
                                         [error](auto& known) { return known.system == error; });
    return row == std::end(kErrors) ? WSASYSCALLFAILURE : row->winsock;
}

}  // namespace port
