// Left out under the address sanitizer, where each block is allocated by itself.
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "NyServer/base/support/detail/SmallBlocks.h"

namespace {

constexpr size_t kBytes = 48;
constexpr int kBlocks = 5000;

std::vector<void*> makeBlocks() {
    std::vector<void*> blocks;
    for (int i = 0; i < kBlocks; ++i) blocks.push_back(allocateSmallBlock(kBytes));
    return blocks;
}

void freeBlocks(const std::vector<void*>& blocks) {
    for (void* block : blocks) freeSmallBlock(block, kBytes);
}

// How many of `blocks` are not in `known`.
size_t countNew(const std::vector<void*>& blocks, const std::set<void*>& known) {
    size_t count = 0;
    for (void* block : blocks) count += known.contains(block) ? 0 : 1;
    return count;
}

TEST(SmallBlocksReuse, FreedBlocksAreReused) {
    const std::vector<void*> blocks = makeBlocks();
    freeBlocks(blocks);
    const std::vector<void*> later = makeBlocks();
    EXPECT_EQ(countNew(later, {blocks.begin(), blocks.end()}), 0U);
    freeBlocks(later);
}

TEST(SmallBlocksReuse, BlocksOfAnEndedThreadAreReusedByOthers) {
    std::vector<void*> blocks;
    std::thread([&] {
        blocks = makeBlocks();
        freeBlocks(blocks);
    }).join();
    std::set<void*> known(blocks.begin(), blocks.end());
    std::vector<void*> later;
    std::thread([&] {
        later = makeBlocks();
        freeBlocks(later);
    }).join();
    EXPECT_EQ(countNew(later, known), 0U);
}

}  // namespace
