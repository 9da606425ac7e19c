// Text between UTF-16 and the active ANSI code page. One implementation per platform, in windows/
// and native/.
#pragma once

#include "detail/AfxText.h"

AfxText textFromAnsi(LPCSTR text, size_t byteCount);
