// A page of the web service, fetched with WinINet. Not exported.
#pragma once

#include <afx.h>

#include "NyServer/base/detail/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <wininet.h>

// Sessions and opened addresses.
using UniqueInternetHandle = NySe::UniqueHandle<HINTERNET, ::InternetCloseHandle>;

struct WebPage {
    CString url;
    LPCWSTR fileName;  // what a copy of the page would be called; none is written
};

enum class FetchMode {
    reachability,  // the page can be opened
    download       // the page's text, if the production service can be opened
};

// Fetches a page and shows the wait cursor. On success returns true, and a download has appended
// the page's text to `text`. On failure returns false with `text` not changed. Throws
// std::bad_alloc.
bool fetchPage(const WebPage& page, FetchMode mode, CString& text);
