// Includes the Windows headers, for all sources: their version, without the rarely used parts,
// Winsock 2 before windows.h.
#pragma once

#ifdef _WINSOCKAPI_
#ifndef _WINSOCK2API_
#error \
    "winsock.h was included first: include this project's headers before <windows.h>, or define WIN32_LEAN_AND_MEAN."
#endif
#endif

#ifndef WINVER
#define WINVER 0x0A00
#endif
#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0A00
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <winsock2.h>
// After winsock2.h.
#include <ws2tcpip.h>
// After both.
#include <windows.h>
