// The free blocks that a thread keeps. Internal to SmallBlocks.
#pragma once

#include <array>
#include <cstddef>

inline constexpr size_t kBlockStep = 16;
inline constexpr size_t kLargestBlock = 256;
inline constexpr size_t kBlockSizes = kLargestBlock / kBlockStep;
// A thread keeps at most two batches of each size.
inline constexpr size_t kBatchBytes = 4096;

struct FreeBlock {
    FreeBlock* next;
    FreeBlock* nextBatch;  // of the first block of a batch in the store
};
static_assert(sizeof(FreeBlock) <= kBlockStep);

struct ThreadBlocks {
    struct List {
        FreeBlock* first;
        size_t spaceInBatch;  // blocks that may still be freed into it until it is a whole batch
        FreeBlock* spare;     // a whole batch, or null
    };
    std::array<List, kBlockSizes> lists;
};

// The calling thread's blocks; null at the end of a thread or of the process, after they have been
// returned. One implementation for each platform.
ThreadBlocks* threadBlocks();

// Returns all blocks to the store. Called once at the end of a thread.
void returnThreadBlocks(ThreadBlocks& blocks);
