// The rest of the platform, for builds that only analyse the code: kernel objects, blocks of
// memory, settings and windows, as far as the socket sources and their tests call them. What is
// said not to be offered fails as the platform may let it fail.
#pragma once

#include <pthread.h>
#include <sys/mman.h>

#include "NyServer/base/mfc/afxplatform.h"

#define WINAPI
#define CALLBACK
#define INFINITE 0xFFFFFFFFu

using HANDLE = void*;
using HGLOBAL = void*;
using HMODULE = HINSTANCE;
using HMENU = struct Menu*;
using HWND = struct Window*;
using HKEY = const struct Key*;
using LPVOID = void*;
using LSTATUS = LONG;
using SIZE_T = size_t;
using LONG_PTR = INT_PTR;
using LRESULT = LONG_PTR;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);

inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(INT_PTR{-1});

// Kernel objects. A handle is a multiple of 4, the lowest that is free.
enum : DWORD { WAIT_OBJECT_0 = 0, WAIT_TIMEOUT = 258, WAIT_FAILED = 0xFFFFFFFF };
enum : DWORD { DUPLICATE_SAME_ACCESS = 2 };
enum : int { THREAD_PRIORITY_NORMAL = 0, THREAD_PRIORITY_ABOVE_NORMAL = 1 };

// Events are manual.
HANDLE CreateEventW(void* security, BOOL isManual, BOOL isSet, const wchar_t* name);
BOOL SetEvent(HANDLE event);
BOOL ResetEvent(HANDLE event);
HANDLE CreateMutexW(void* security, BOOL isOwned, const wchar_t* name);
BOOL ReleaseMutex(HANDLE mutex);
DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);
BOOL DuplicateHandle(HANDLE from, HANDLE handle, HANDLE to, HANDLE* copy, DWORD access,
                     BOOL isInherited, DWORD options);
BOOL CloseHandle(HANDLE handle);
BOOL GetProcessHandleCount(HANDLE process, DWORD* count);
HANDLE GetCurrentProcess();
HANDLE GetCurrentThread();
DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();
BOOL SetThreadPriority(HANDLE thread, int priority);
int GetThreadPriority(HANDLE thread);
// Not offered: a thread that is ended by force leaves its locks and memory behind, which is what is
// looked for here.
BOOL TerminateThread(HANDLE thread, DWORD exitCode);
DWORD SuspendThread(HANDLE thread);
DWORD ResumeThread(HANDLE thread);

void Sleep(DWORD milliseconds);
ULONGLONG GetTickCount64();
BOOL GetComputerNameW(WCHAR* name, DWORD* size);

inline HANDLE UlongToHandle(DWORD value) {
    return reinterpret_cast<HANDLE>(UINT_PTR{value});
}

struct CRITICAL_SECTION {
    pthread_mutex_t mutex;
};
void InitializeCriticalSection(CRITICAL_SECTION* section);
void DeleteCriticalSection(CRITICAL_SECTION* section);
void EnterCriticalSection(CRITICAL_SECTION* section);
void LeaveCriticalSection(CRITICAL_SECTION* section);

// Memory.
enum : UINT { GMEM_FIXED = 0, GMEM_MOVEABLE = 2, GMEM_ZEROINIT = 0x40, GMEM_LOCKCOUNT = 0xFF };
HGLOBAL GlobalAlloc(UINT flags, SIZE_T size);
HGLOBAL GlobalFree(HGLOBAL block);
void* GlobalLock(HGLOBAL block);
BOOL GlobalUnlock(HGLOBAL block);
// REQUIRES: the address of a block's bytes; no other can be told from it.
HGLOBAL GlobalHandle(const void* address);
SIZE_T GlobalSize(HGLOBAL block);
UINT GlobalFlags(HGLOBAL block);

enum : DWORD { MEM_COMMIT = 0x1000, MEM_RESERVE = 0x2000, MEM_RELEASE = 0x8000 };
enum : DWORD { PAGE_NOACCESS = PROT_NONE, PAGE_READWRITE = PROT_READ | PROT_WRITE };
void* VirtualAlloc(void* address, SIZE_T size, DWORD type, DWORD protection);
BOOL VirtualProtect(void* address, SIZE_T size, DWORD protection, DWORD* before);
BOOL VirtualFree(void* address, SIZE_T size, DWORD type);

// Files. Not offered: none can be opened.
enum { MAX_PATH = 260 };
enum : DWORD { FILE_BEGIN, FILE_CURRENT, FILE_END };
enum : DWORD { GENERIC_READ = 0x80000000, GENERIC_WRITE = 0x40000000, FILE_SHARE_READ = 1 };
enum : DWORD { CREATE_ALWAYS = 2, OPEN_EXISTING = 3, OPEN_ALWAYS = 4, FILE_ATTRIBUTE_NORMAL = 128 };
HANDLE CreateFileW(const wchar_t* path, DWORD access, DWORD share, void* security,
                   DWORD disposition, DWORD flags, HANDLE model);
BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* done, void* overlapped);
BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* done, void* overlapped);
DWORD SetFilePointer(HANDLE file, LONG offset, LONG* high, DWORD origin);
DWORD GetFileSize(HANDLE file, DWORD* high);

// Settings: one set of values, whatever the key, emptied by each RegOverridePredefKey.
enum : LONG { ERROR_SUCCESS = 0, ERROR_FILE_NOT_FOUND = 2, ERROR_INVALID_HANDLE = 6 };
enum : DWORD { REG_SZ = 1, REG_BINARY = 3, REG_DWORD = 4, KEY_READ = 0x20019 };
extern const HKEY HKEY_LOCAL_MACHINE;
extern const HKEY HKEY_CURRENT_USER;
LSTATUS RegCreateKeyW(HKEY parent, const wchar_t* path, HKEY* key);
LSTATUS RegOpenKeyExW(HKEY parent, const wchar_t* path, DWORD options, DWORD access, HKEY* key);
LSTATUS RegOverridePredefKey(HKEY key, HKEY replacement);
LSTATUS RegCloseKey(HKEY key);
LSTATUS RegDeleteTreeW(HKEY parent, const wchar_t* path);
LSTATUS RegSetValueExW(HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data,
                       DWORD size);
LSTATUS RegQueryValueExW(HKEY key, const wchar_t* name, DWORD* reserved, DWORD* type, BYTE* data,
                         DWORD* size);

// Windows: message queues of threads, without anything to be seen.
enum : UINT { WM_DESTROY = 0x2, WM_NCCREATE = 0x81, WM_USER = 0x400, WM_APP = 0x8000 };
enum : DWORD { WS_OVERLAPPED = 0 };
enum : int { GWLP_USERDATA = -21 };
inline const HWND HWND_MESSAGE = reinterpret_cast<HWND>(INT_PTR{-3});
struct WNDCLASSW {
    WNDPROC lpfnWndProc;
    int cbWndExtra;
    HINSTANCE hInstance;
    const wchar_t* lpszClassName;
};
struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};
#define LOWORD(value) static_cast<WORD>(value)
#define HIWORD(value) static_cast<WORD>((value) >> 16)

HINSTANCE GetModuleHandleW(const wchar_t* name);
UINT RegisterWindowMessageW(const wchar_t* name);
WORD RegisterClassW(const WNDCLASSW* description);
BOOL UnregisterClassW(const wchar_t* name, HINSTANCE module);
BOOL GetClassInfoW(HINSTANCE module, const wchar_t* name, WNDCLASSW* description);
HWND CreateWindowExW(DWORD exStyle, const wchar_t* className, const wchar_t* title, DWORD style,
                     int x, int y, int width, int height, HWND parent, HMENU menu, HINSTANCE module,
                     void* parameter);
BOOL DestroyWindow(HWND window);
BOOL IsWindow(HWND window);
LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
LONG_PTR GetWindowLongPtrW(HWND window, int index);
LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void PostQuitMessage(int exitCode);
enum : UINT { SMTO_NORMAL = 0 };
// Without a time-out here.
LRESULT SendMessageTimeoutW(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags,
                            UINT milliseconds, UINT_PTR* result);
enum : UINT { PM_NOREMOVE = 0, PM_REMOVE = 1, PM_QS_POSTMESSAGE = 0x980000 };
BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT flags);
BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last);
LRESULT DispatchMessageW(const MSG* message);

// Announcements through windows. Not offered.
int WSAAsyncSelect(UINT_PTR socket, HWND window, UINT message, long events);
HANDLE WSAAsyncGetHostByName(HWND window, UINT message, const char* name, char* buffer, int size);
HANDLE WSAAsyncGetHostByAddr(HWND window, UINT message, const char* address, int length, int family,
                             char* buffer, int size);
int WSACancelAsyncRequest(HANDLE request);
