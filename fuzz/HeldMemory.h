// Counts the memory that a decoder allocates.
#pragma once

#include <cstddef>

// Counts from its construction on the memory of the calling thread, of all allocators. One at a
// time.
class HeldMemory {
  public:
    HeldMemory();
    HeldMemory(const HeldMemory&) = delete;
    HeldMemory& operator=(const HeldMemory&) = delete;
    ~HeldMemory();

    // Ends the program if more than `bytes` were held at one time, in addition to those at the
    // construction.
    void requireAtMost(size_t bytes) const;
};
