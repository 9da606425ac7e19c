#include "NyServer/base/support/detail/SmallBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr size_t kLargestTried = 600;

// A block whose bytes are all its mark.
struct Block {
    void* memory;
    size_t bytes;
    unsigned char mark;
};

Block makeBlock(size_t bytes, unsigned char mark) {
    void* const memory = allocateSmallBlock(bytes);
    std::memset(memory, mark, bytes);
    return {memory, bytes, mark};
}

bool isUntouched(const Block& block) {
    const auto* first = static_cast<const unsigned char*>(block.memory);
    return std::all_of(first, first + block.bytes,
                       [&](unsigned char byte) { return byte == block.mark; });
}

std::vector<Block> makeBlocks(size_t ofEachSize) {
    std::vector<Block> blocks;
    for (size_t i = 0; i < ofEachSize; ++i) {
        for (size_t bytes = 0; bytes < kLargestTried; ++bytes) {
            blocks.push_back(makeBlock(bytes, static_cast<unsigned char>(blocks.size())));
        }
    }
    return blocks;
}

void freeBlocks(const std::vector<Block>& blocks) {
    for (const Block& block : blocks) {
        EXPECT_TRUE(isUntouched(block)) << block.bytes << " bytes";
        freeSmallBlock(block.memory, block.bytes);
    }
}

TEST(SmallBlocks, DoNotOverlapAtAnySize) {
    for (int round = 0; round < 3; ++round) freeBlocks(makeBlocks(20));
}

TEST(SmallBlocks, AreAlignedForAnyType) {
    const std::vector<Block> blocks = makeBlocks(2);
    for (const Block& block : blocks) {
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block.memory) % alignof(std::max_align_t), 0U);
    }
    freeBlocks(blocks);
}

TEST(SmallBlocks, NullMayBeFreed) {
    freeSmallBlock(nullptr, 0);
    freeSmallBlock(nullptr, 16);
    freeSmallBlock(nullptr, kLargestTried);
}

TEST(SmallBlocks, MayBeFreedByAnotherThread) {
    for (int round = 0; round < 3; ++round) {
        const std::vector<Block> blocks = makeBlocks(10);
        std::thread([&] { freeBlocks(blocks); }).join();
    }
}

TEST(SmallBlocks, ThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 5; ++round) freeBlocks(makeBlocks(5));
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Frees `lateBlock` after the thread's own free blocks have been given back. It has no members:
// mingw-w64 frees thread-local storage before it calls the destructors of what was in it.
void* lateBlock = nullptr;
struct FreesLate {
    ~FreesLate() { freeSmallBlock(std::exchange(lateBlock, nullptr), 32); }
};

TEST(SmallBlocks, MayBeFreedWhileTheThreadEnds) {
    std::thread([] {
        static thread_local FreesLate late;  // made first, so that it goes last
        static_cast<void>(&late);
        lateBlock = allocateSmallBlock(32);
    }).join();
    EXPECT_EQ(lateBlock, nullptr);
}

}  // namespace
