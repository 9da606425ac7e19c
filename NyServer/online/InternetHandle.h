#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <wininet.h>

struct InternetHandleTraits {
    using Handle = HINTERNET;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { ::InternetCloseHandle(handle); }
};

// Sessions and opened addresses.
using UniqueInternetHandle = UniqueHandle<InternetHandleTraits>;
