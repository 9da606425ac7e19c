#pragma once

#include "NyServer/base/WindowsPrelude.h"
// After windows.h.
#include <psapi.h>

// The memory of this process that is in use, in bytes.
inline SIZE_T workingSet() {
    PROCESS_MEMORY_COUNTERS counters{};
    ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
    return counters.WorkingSetSize;
}
