// A page of the web service. Not exported. It is fetched with WinINet on Windows, where this is
// part of the library. Elsewhere it is fetched with libcurl, and this is part of an archive of its
// own, so that the library depends on nothing but the platform.
#pragma once

#include <afx.h>

struct WebPage {
    CString url;
    LPCWSTR fileName;  // what a copy of the page would be called; none is written
};

enum class FetchMode {
    reachability,  // the page can be opened
    download       // the page's text, if the production service can be opened
};

// Fetches a page and, on Windows, shows the wait cursor. On success returns true, and a download
// has appended the page's text to `text`. On failure returns false with `text` not changed. Throws
// std::bad_alloc.
bool fetchPage(const WebPage& page, FetchMode mode, CString& text);
