#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <wininet.h>

// Sessions and opened addresses.
using UniqueInternetHandle = UniqueHandle<HINTERNET, ::InternetCloseHandle>;
