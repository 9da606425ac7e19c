// The characters of a CString. Internal to the class library.
#pragma once

#include <string>

#include "AfxSmallBlocks.h"

using AfxText = std::basic_string<WCHAR, std::char_traits<WCHAR>, AfxSmallAllocator<WCHAR>>;
