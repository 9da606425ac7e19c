// Text in UTF-16 code units.
#pragma once

#include <string>
#include <string_view>

#include "NyServer/base/port/Platform.h"

using WideText = std::basic_string<WCHAR>;
