// A page of the service, fetched with WinINet. Not exported.
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

// Shows the wait cursor meanwhile. True on success; then a download has added what it brought to
// `text`. False on every failure, with `text` as it was. Throws std::bad_alloc.
bool fetchPage(const WebPage& page, FetchMode mode, CString& text);
