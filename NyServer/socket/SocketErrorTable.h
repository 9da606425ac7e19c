// The texts of socket errors. Do not change or translate them; some have no full stop.
#pragma once

#include <span>

#include "NyServer/base/WindowsPrelude.h"

struct SocketErrorRow {
    int code;
    const wchar_t* text;
};

// Texts of a socket's pending error.
inline constexpr SocketErrorRow kPendingErrorTexts[] = {
    {0, L"Last error not available"},
    {WSA_INVALID_HANDLE, L"Specified event object handle is invalid."},
    {WSA_NOT_ENOUGH_MEMORY, L"Insufficient memory available."},
    {WSA_INVALID_PARAMETER, L"One or more parameters are invalid."},
    {WSA_OPERATION_ABORTED, L"Overlapped operation aborted."},
    {WSA_IO_INCOMPLETE, L"Overlapped I/O event object not in signaled state."},
    {WSA_IO_PENDING, L"Overlapped operations will complete later."},
    {WSAEINTR, L"Interrupted function call."},
    {WSAEACCES, L"Permission denied"},
    {WSAEFAULT, L"Invalid pointer or buffer too small"},
    {WSAEINVAL, L"Invalid argument"},
    {WSAEMFILE, L"Too many open files."},
    {WSAEWOULDBLOCK, L"Resource temporarily unavailable."},
    {WSAEINPROGRESS, L"Operation now in progress."},
    {WSAEALREADY, L"Operation already in progress."},
    {WSAENOTSOCK, L"Socket operation on non-socket."},
    {WSAEDESTADDRREQ, L"Destination address required."},
    {WSAEMSGSIZE, L"Message too long."},
    {WSAEPROTOTYPE, L"Protocol wrong type for socket."},
    {WSAENOPROTOOPT, L"Bad protocol option."},
    {WSAEPROTONOSUPPORT, L"Protocol not supported."},
    {WSAESOCKTNOSUPPORT, L"Socket type not supported."},
    {WSAEOPNOTSUPP, L"Operation not supported."},
    {WSAEPFNOSUPPORT, L"Protocol family not supported."},
    {WSAEAFNOSUPPORT, L"Address family not supported by protocol family."},
    {WSAEADDRINUSE, L"Address already in use."},
    {WSAEADDRNOTAVAIL, L"Cannot assign requested address."},
    {WSAENETDOWN, L"Network is down."},
    {WSAENETUNREACH, L"Network is unreachable."},
    {WSAENETRESET, L"Network dropped connection on reset."},
    {WSAECONNABORTED, L"Software caused connection abort."},
    {WSAECONNRESET, L"Connection reset by peer."},
    {WSAENOBUFS, L"No buffer space available."},
    {WSAEISCONN, L"Socket is already connected."},
    {WSAENOTCONN, L"Socket is not connected."},
    {WSAESHUTDOWN, L"Cannot send after socket shutdown."},
    {WSAETIMEDOUT, L"Connection timed out."},
    {WSAECONNREFUSED, L"Connection refused."},
    {WSAEHOSTDOWN, L"Host is down."},
    {WSAEHOSTUNREACH, L"No route to host."},
    {WSAEPROCLIM, L"Too many processes."},
    {WSASYSNOTREADY, L"Network subsystem is unavailable."},
    {WSANOTINITIALISED, L"Successful WSAStartup not yet performed."},
    {WSAEDISCON, L"Graceful shutdown in progress."},
    {WSASYSCALLFAILURE, L"System call failure."},
    {WSATYPE_NOT_FOUND, L"Class type not found."},
    {WSAHOST_NOT_FOUND, L"Host not found."},
    {WSATRY_AGAIN, L"Non-authoritative host not found"},
    {WSANO_RECOVERY, L"Non-recoverable error."},
    {WSANO_DATA, L"Valid name, no data record of requested type."},
};

// Texts of a getsockopt call that failed.
inline constexpr SocketErrorRow kQueryErrorTexts[] = {
    {WSAEINVAL, L"GetSockOpt error: WSAEINVAL"},
    {WSAEINPROGRESS, L"GetSockOpt error: WSAEINPROGRESS"},
    {WSAENOTSOCK, L"GetSockOpt error: WSAENOTSOCK"},
    {WSAENOPROTOOPT, L"GetSockOpt error: WSAENOPROTOOPT"},
    {WSAENETDOWN, L"GetSockOpt error: WSAENETDOWN"},
    {WSANOTINITIALISED, L"GetSockOpt error: WSANOTINITIALISED"},
};

inline const wchar_t* findErrorText(std::span<const SocketErrorRow> rows, int code,
                                    const wchar_t* otherwise) {
    for (const SocketErrorRow& row : rows)
        if (row.code == code) return row.text;
    return otherwise;
}

inline const wchar_t* pendingErrorText(int code) {
    return findErrorText(kPendingErrorTexts, code, L"Unknown socket error.");
}

inline const wchar_t* queryErrorText(int code) {
    return findErrorText(kQueryErrorTexts, code, L"GetSockOpt error.");
}
