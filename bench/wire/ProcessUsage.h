// What a process has of memory and handles.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace bench {

struct ProcessUsage {
    size_t workingSet;  // bytes
    size_t committed;   // bytes
    size_t handles;

    // Throws std::runtime_error when the system does not tell.
    static ProcessUsage of(HANDLE process);
};

}  // namespace bench
