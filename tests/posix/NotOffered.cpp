// What the stand-ins do not offer: the calls fail as the platform may let them fail.
#include "NyServer/base/WindowsPrelude.h"

BOOL TerminateThread(HANDLE, DWORD) {
    return FALSE;
}

DWORD SuspendThread(HANDLE) {
    return WAIT_FAILED;
}

DWORD ResumeThread(HANDLE) {
    return WAIT_FAILED;
}

HANDLE CreateFileW(const wchar_t*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
    return INVALID_HANDLE_VALUE;
}

BOOL ReadFile(HANDLE, void*, DWORD, DWORD*, void*) {
    return FALSE;
}

BOOL WriteFile(HANDLE, const void*, DWORD, DWORD*, void*) {
    return FALSE;
}

DWORD SetFilePointer(HANDLE, LONG, LONG*, DWORD) {
    return 0xFFFFFFFF;
}

DWORD GetFileSize(HANDLE, DWORD*) {
    return 0xFFFFFFFF;
}

int WSAAsyncSelect(UINT_PTR, HWND, UINT, long) {
    return SOCKET_ERROR;
}

HANDLE WSAAsyncGetHostByName(HWND, UINT, const char*, char*, int) {
    return nullptr;
}

HANDLE WSAAsyncGetHostByAddr(HWND, UINT, const char*, int, int, char*, int) {
    return nullptr;
}

int WSACancelAsyncRequest(HANDLE) {
    return SOCKET_ERROR;
}

int WSACancelBlockingCall() {
    return SOCKET_ERROR;
}
