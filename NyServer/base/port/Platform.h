// The platform's integer types, characters and socket types, under their names on Windows. Together
// with Port.h the only place that tests for the platform.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#include "NyServer/base/WindowsPrelude.h"

#include <tchar.h>
#else
#include "NyServer/base/port/posix/Types.h"
#endif
