// The WinINet handles that are open in this process, found by asking about every value that one may
// have.
#pragma once

#include <string>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <wininet.h>

struct OpenInternetHandle {
    HINTERNET handle;
    DWORD type;  // INTERNET_HANDLE_TYPE_...
};

inline std::vector<OpenInternetHandle> openInternetHandles() {
    std::vector<OpenInternetHandle> found;
    for (UINT_PTR value = 1; value < 256; ++value) {
        const auto handle = reinterpret_cast<HINTERNET>(value);
        DWORD type = 0;
        DWORD size = sizeof type;
        if (::InternetQueryOptionW(handle, INTERNET_OPTION_HANDLE_TYPE, &type, &size)) {
            found.push_back({handle, type});
        }
    }
    return found;
}

inline std::wstring urlOf(HINTERNET handle) {
    wchar_t url[512] = L"";
    DWORD size = sizeof url;
    ::InternetQueryOptionW(handle, INTERNET_OPTION_URL, url, &size);
    return url;
}
