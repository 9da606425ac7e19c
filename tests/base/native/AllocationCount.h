// Counts what this program asks of operator new. Not for use by several threads.
#pragma once

#include <cstddef>

struct AllocationCount {
    static size_t asked;  // bytes, in all since the last reset, whether freed or not

    static void reset() { asked = 0; }
};
