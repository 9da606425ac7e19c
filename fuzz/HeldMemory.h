// Counts the memory that a decoder asks for.
#pragma once

#include <cstddef>

// Counts from its construction on what the calling thread holds, by whichever allocator. One at a
// time.
class HeldMemory {
  public:
    HeldMemory();
    HeldMemory(const HeldMemory&) = delete;
    HeldMemory& operator=(const HeldMemory&) = delete;
    ~HeldMemory();

    // Ends the program when more than `bytes` were held at one time, above what was held at the
    // construction.
    void requireAtMost(size_t bytes) const;
};
