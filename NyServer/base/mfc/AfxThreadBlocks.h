// The free blocks that a thread keeps. Internal to AfxSmallBlocks.
#pragma once

#include <array>
#include <cstddef>

inline constexpr size_t kAfxBlockStep = 16;
inline constexpr size_t kAfxLargestBlock = 256;
inline constexpr size_t kAfxBlockSizes = kAfxLargestBlock / kAfxBlockStep;
// A thread keeps at most two batches of each size.
inline constexpr size_t kAfxBatchBytes = 4096;

struct AfxFreeBlock {
    AfxFreeBlock* next;
    AfxFreeBlock* nextBatch;  // of the first block of a batch in the store
};
static_assert(sizeof(AfxFreeBlock) <= kAfxBlockStep);

struct AfxThreadBlocks {
    struct List {
        AfxFreeBlock* first;
        size_t room;          // how many more may be put here before it is a batch
        AfxFreeBlock* spare;  // a whole batch, or null
    };
    std::array<List, kAfxBlockSizes> lists;
};

// The calling thread's blocks; null at the end of a thread or of the process, when they have been
// given back. One implementation for each platform.
AfxThreadBlocks* afxThreadBlocks();

// Gives all to the store. Called once at the end of a thread.
void afxReturnBlocks(AfxThreadBlocks& blocks);
