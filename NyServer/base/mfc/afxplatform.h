// The seam between the class library and the platform: integer types, characters and literals. This
// is the only file of the portable core that tests for the platform.
#pragma once

#include <cstddef>
#include <cstdint>

#include "NyServer/base/support/NyBaseApi.h"

#ifdef _WIN32
#include "NyServer/base/WindowsPrelude.h"

#include <tchar.h>
#else
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
typedef char* LPSTR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* LPWSTR;
typedef LPCWSTR LPCTSTR;
typedef LPWSTR LPTSTR;
typedef struct HINSTANCE__* HINSTANCE;  // never defined
#define TRUE 1
#define FALSE 0
#define _T(literal) u##literal
#define PASCAL
#endif
