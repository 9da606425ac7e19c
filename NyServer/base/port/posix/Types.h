// The names of the platform's types on POSIX systems. Integers have the sizes that they have on
// Windows, because archives and messages contain them.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sys/socket.h>

#include <cstddef>
#include <cstdint>

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int32_t LONG;
typedef int BOOL;
typedef unsigned int UINT;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef long long LONGLONG;  // as on Windows; archives have no native long
typedef unsigned long long ULONGLONG;
typedef char16_t WCHAR;
typedef WCHAR TCHAR;
typedef const char* LPCSTR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* LPWSTR;
typedef LPCWSTR LPCTSTR;
typedef LPWSTR LPTSTR;
#define TRUE 1
#define FALSE 0
#define NY_UTF16(literal) u##literal
#define _T(literal) NY_UTF16(literal)  // which may be a macro
#define PASCAL

// Windows and modules: named by signatures only, never defined.
typedef struct HINSTANCE__* HINSTANCE;
typedef struct HWND__* HWND;
typedef UINT_PTR WPARAM;
typedef INT_PTR LPARAM;
typedef INT_PTR LRESULT;
#define CALLBACK

// Sockets. The error numbers are Winsock's (WSAE...), so that results, texts and logs are the same
// on every platform: do not change them.
typedef int SOCKET;
inline constexpr SOCKET INVALID_SOCKET = -1;
inline constexpr int SOCKET_ERROR = -1;

struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
};

enum : int {
    WSA_INVALID_HANDLE = 6,
    WSA_NOT_ENOUGH_MEMORY = 8,
    WSA_INVALID_PARAMETER = 87,
    WSA_OPERATION_ABORTED = 995,
    WSA_IO_INCOMPLETE = 996,
    WSA_IO_PENDING = 997,
    WSAEINTR = 10004,
    WSAEACCES = 10013,
    WSAEFAULT = 10014,
    WSAEINVAL = 10022,
    WSAEMFILE = 10024,
    WSAEWOULDBLOCK = 10035,
    WSAEINPROGRESS = 10036,
    WSAEALREADY = 10037,
    WSAENOTSOCK = 10038,
    WSAEDESTADDRREQ = 10039,
    WSAEMSGSIZE = 10040,
    WSAEPROTOTYPE = 10041,
    WSAENOPROTOOPT = 10042,
    WSAEPROTONOSUPPORT = 10043,
    WSAESOCKTNOSUPPORT = 10044,
    WSAEOPNOTSUPP = 10045,
    WSAEPFNOSUPPORT = 10046,
    WSAEAFNOSUPPORT = 10047,
    WSAEADDRINUSE = 10048,
    WSAEADDRNOTAVAIL = 10049,
    WSAENETDOWN = 10050,
    WSAENETUNREACH = 10051,
    WSAENETRESET = 10052,
    WSAECONNABORTED = 10053,
    WSAECONNRESET = 10054,
    WSAENOBUFS = 10055,
    WSAEISCONN = 10056,
    WSAENOTCONN = 10057,
    WSAESHUTDOWN = 10058,
    WSAETIMEDOUT = 10060,
    WSAECONNREFUSED = 10061,
    WSAEHOSTDOWN = 10064,
    WSAEHOSTUNREACH = 10065,
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

// Files: access, disposition and origin as CUT_File takes them. Do not change the numbers.
enum : DWORD { GENERIC_READ = 0x80000000, GENERIC_WRITE = 0x40000000 };
enum : DWORD {
    CREATE_NEW = 1,
    CREATE_ALWAYS = 2,
    OPEN_EXISTING = 3,
    OPEN_ALWAYS = 4,
    TRUNCATE_EXISTING = 5,
};
enum : DWORD { FILE_BEGIN = 0, FILE_CURRENT = 1, FILE_END = 2 };
enum : int { MAX_PATH = 260 };
