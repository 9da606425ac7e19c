// The memory and handles of a process.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace bench {

struct ProcessUsage {
    size_t workingSet;  // bytes
    size_t committed;   // bytes
    size_t handles;

    // Throws std::runtime_error if the system does not report them.
    static ProcessUsage of(HANDLE process);
};

}  // namespace bench
