// Converts text in the active ANSI code page to UTF-16. One implementation per platform, in
// windows/ and posix/.
#pragma once

#include "detail/AfxText.h"

AfxText textFromAnsi(LPCSTR text, size_t byteCount);
