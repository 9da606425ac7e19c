// The characters of a CString. Internal to the class library.
#pragma once

#include <string>

#include "NyServer/base/mfc/afxplatform.h"
#include "NyServer/base/support/detail/SmallBlocks.h"

using AfxText = std::basic_string<WCHAR, std::char_traits<WCHAR>, SmallBlockAllocator<WCHAR>>;
