// Sockets, for builds that only analyse the code: what the socket sources call of Winsock, mapped
// to POSIX. Sockets are file descriptors and error numbers those of errno; where the two systems
// differ, an overload of the call translates.
#pragma once

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "NyServer/base/mfc/afxplatform.h"

using SOCKET = UINT_PTR;
inline constexpr SOCKET INVALID_SOCKET = ~SOCKET{0};
inline constexpr int SOCKET_ERROR = -1;
enum { SD_RECEIVE = SHUT_RD, SD_SEND = SHUT_WR, SD_BOTH = SHUT_RDWR };

struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
};

#define MAKEWORD(low, high) static_cast<WORD>((low) | (high) << 8)

// The first has to stand aside, because the two are filled in differently.
struct WinsockSet {
    u_int fd_count;
    SOCKET fd_array[64];
};
#define fd_set WinsockSet

enum : int {
    WSA_INVALID_HANDLE = 10006,
    WSA_NOT_ENOUGH_MEMORY = 10008,
    WSA_INVALID_PARAMETER = 10087,
    WSA_OPERATION_ABORTED = 10995,
    WSA_IO_INCOMPLETE = 10996,
    WSA_IO_PENDING = 10997,
    WSAEINTR = EINTR,
    WSAEACCES = EACCES,
    WSAEFAULT = EFAULT,
    WSAEINVAL = EINVAL,
    WSAEMFILE = EMFILE,
    WSAEWOULDBLOCK = EWOULDBLOCK,
    WSAEINPROGRESS = 10036,  // a connect that goes on is WSAEWOULDBLOCK in Winsock
    WSAEALREADY = EALREADY,
    WSAENOTSOCK = ENOTSOCK,
    WSAEDESTADDRREQ = EDESTADDRREQ,
    WSAEMSGSIZE = EMSGSIZE,
    WSAEPROTOTYPE = EPROTOTYPE,
    WSAENOPROTOOPT = ENOPROTOOPT,
    WSAEPROTONOSUPPORT = EPROTONOSUPPORT,
    WSAESOCKTNOSUPPORT = ESOCKTNOSUPPORT,
    WSAEOPNOTSUPP = EOPNOTSUPP,
    WSAEPFNOSUPPORT = EPFNOSUPPORT,
    WSAEAFNOSUPPORT = EAFNOSUPPORT,
    WSAEADDRINUSE = EADDRINUSE,
    WSAEADDRNOTAVAIL = EADDRNOTAVAIL,
    WSAENETDOWN = ENETDOWN,
    WSAENETUNREACH = ENETUNREACH,
    WSAENETRESET = ENETRESET,
    WSAECONNABORTED = ECONNABORTED,
    WSAECONNRESET = ECONNRESET,
    WSAENOBUFS = ENOBUFS,
    WSAEISCONN = EISCONN,
    WSAENOTCONN = ENOTCONN,
    WSAESHUTDOWN = ESHUTDOWN,
    WSAETIMEDOUT = ETIMEDOUT,
    WSAECONNREFUSED = ECONNREFUSED,
    WSAEHOSTDOWN = EHOSTDOWN,
    WSAEHOSTUNREACH = EHOSTUNREACH,
    WSAEPROCLIM = 10067,
    WSASYSNOTREADY = 10091,
    WSANOTINITIALISED = 10093,
    WSAEDISCON = 10101,
    WSASYSCALLFAILURE = 10107,
    WSATYPE_NOT_FOUND = 10109,
    WSAHOST_NOT_FOUND = 11001,
    WSATRY_AGAIN = 11002,
    WSANO_RECOVERY = 11003,
    WSANO_DATA = 11004,
};

int WSAStartup(WORD version, WSADATA* data);
int WSACleanup();
int WSAGetLastError();
int WSACancelBlockingCall();

// Makes an accept that waits for the socket fail, as Winsock does.
int closesocket(SOCKET socket);
int ioctlsocket(SOCKET socket, long command, u_long* argument);

// Overloads of the POSIX names.
SOCKET accept(SOCKET socket, sockaddr* address, int* length);
int getsockname(SOCKET socket, sockaddr* address, int* length);
int recvfrom(SOCKET socket, char* buffer, int size, int flags, sockaddr* from, int* length);
int select(int ignored, WinsockSet* readable, WinsockSet* writable, WinsockSet* failed,
           const timeval* timeOut);
int getsockopt(SOCKET socket, int level, int option, char* value, int* length);
int setsockopt(SOCKET socket, int level, int option, const char* value, int length);
