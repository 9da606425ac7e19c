// Counts what the program takes from operator new, and can make it fail. For programs in one static
// piece.
#pragma once

#include <cstddef>

// Counts from its construction on. One at a time; not for several threads.
class AllocationCount {
  public:
    AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;
    ~AllocationCount();

    // The most bytes held at one time, above what was held at the construction.
    std::size_t peakBytes() const;

    // The allocation after `count` more fails with std::bad_alloc, once.
    void failAfter(std::size_t count);
    // Whether it has failed.
    bool hasFailed() const;
};
