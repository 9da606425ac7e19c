// The texts of socket errors. Do not change or translate them; some have no full stop.
#pragma once

#include <span>

#include "NyServer/base/port/Platform.h"

struct SocketErrorRow {
    int code;
    const WCHAR* text;
};

// Texts of a socket's pending error.
inline constexpr SocketErrorRow kPendingErrorTexts[] = {
    {0, _T("Last error not available")},
    {WSA_INVALID_HANDLE, _T("Specified event object handle is invalid.")},
    {WSA_NOT_ENOUGH_MEMORY, _T("Insufficient memory available.")},
    {WSA_INVALID_PARAMETER, _T("One or more parameters are invalid.")},
    {WSA_OPERATION_ABORTED, _T("Overlapped operation aborted.")},
    {WSA_IO_INCOMPLETE, _T("Overlapped I/O event object not in signaled state.")},
    {WSA_IO_PENDING, _T("Overlapped operations will complete later.")},
    {WSAEINTR, _T("Interrupted function call.")},
    {WSAEACCES, _T("Permission denied")},
    {WSAEFAULT, _T("Invalid pointer or buffer too small")},
    {WSAEINVAL, _T("Invalid argument")},
    {WSAEMFILE, _T("Too many open files.")},
    {WSAEWOULDBLOCK, _T("Resource temporarily unavailable.")},
    {WSAEINPROGRESS, _T("Operation now in progress.")},
    {WSAEALREADY, _T("Operation already in progress.")},
    {WSAENOTSOCK, _T("Socket operation on non-socket.")},
    {WSAEDESTADDRREQ, _T("Destination address required.")},
    {WSAEMSGSIZE, _T("Message too long.")},
    {WSAEPROTOTYPE, _T("Protocol wrong type for socket.")},
    {WSAENOPROTOOPT, _T("Bad protocol option.")},
    {WSAEPROTONOSUPPORT, _T("Protocol not supported.")},
    {WSAESOCKTNOSUPPORT, _T("Socket type not supported.")},
    {WSAEOPNOTSUPP, _T("Operation not supported.")},
    {WSAEPFNOSUPPORT, _T("Protocol family not supported.")},
    {WSAEAFNOSUPPORT, _T("Address family not supported by protocol family.")},
    {WSAEADDRINUSE, _T("Address already in use.")},
    {WSAEADDRNOTAVAIL, _T("Cannot assign requested address.")},
    {WSAENETDOWN, _T("Network is down.")},
    {WSAENETUNREACH, _T("Network is unreachable.")},
    {WSAENETRESET, _T("Network dropped connection on reset.")},
    {WSAECONNABORTED, _T("Software caused connection abort.")},
    {WSAECONNRESET, _T("Connection reset by peer.")},
    {WSAENOBUFS, _T("No buffer space available.")},
    {WSAEISCONN, _T("Socket is already connected.")},
    {WSAENOTCONN, _T("Socket is not connected.")},
    {WSAESHUTDOWN, _T("Cannot send after socket shutdown.")},
    {WSAETIMEDOUT, _T("Connection timed out.")},
    {WSAECONNREFUSED, _T("Connection refused.")},
    {WSAEHOSTDOWN, _T("Host is down.")},
    {WSAEHOSTUNREACH, _T("No route to host.")},
    {WSAEPROCLIM, _T("Too many processes.")},
    {WSASYSNOTREADY, _T("Network subsystem is unavailable.")},
    {WSANOTINITIALISED, _T("Successful WSAStartup not yet performed.")},
    {WSAEDISCON, _T("Graceful shutdown in progress.")},
    {WSASYSCALLFAILURE, _T("System call failure.")},
    {WSATYPE_NOT_FOUND, _T("Class type not found.")},
    {WSAHOST_NOT_FOUND, _T("Host not found.")},
    {WSATRY_AGAIN, _T("Non-authoritative host not found")},
    {WSANO_RECOVERY, _T("Non-recoverable error.")},
    {WSANO_DATA, _T("Valid name, no data record of requested type.")},
};

// Texts of a getsockopt call that failed.
inline constexpr SocketErrorRow kQueryErrorTexts[] = {
    {WSAEINVAL, _T("GetSockOpt error: WSAEINVAL")},
    {WSAEINPROGRESS, _T("GetSockOpt error: WSAEINPROGRESS")},
    {WSAENOTSOCK, _T("GetSockOpt error: WSAENOTSOCK")},
    {WSAENOPROTOOPT, _T("GetSockOpt error: WSAENOPROTOOPT")},
    {WSAENETDOWN, _T("GetSockOpt error: WSAENETDOWN")},
    {WSANOTINITIALISED, _T("GetSockOpt error: WSANOTINITIALISED")},
};

inline const WCHAR* findErrorText(std::span<const SocketErrorRow> rows, int code,
                                  const WCHAR* otherwise) {
    for (const SocketErrorRow& row : rows)
        if (row.code == code) return row.text;
    return otherwise;
}

inline const WCHAR* pendingErrorText(int code) {
    return findErrorText(kPendingErrorTexts, code, _T("Unknown socket error."));
}

inline const WCHAR* queryErrorText(int code) {
    return findErrorText(kQueryErrorTexts, code, _T("GetSockOpt error."));
}
