#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/support/ScriptedSource.h"

namespace {

template <class Count>
constexpr Count sum(Count total, int count) {
    socketcalls::addWrapping(total, count);
    return total;
}

constexpr long kHighest = std::numeric_limits<long>::max();
constexpr long kLowest = std::numeric_limits<long>::min();

// The compiler refuses an addition that overflows.
static_assert(sum(kHighest - 255, 255) == kHighest);
static_assert(sum(kHighest, 256) == kLowest + 255);
static_assert(sum(std::numeric_limits<int>::max(), 1) == std::numeric_limits<int>::min());

TEST(TransferTotal, WrapsAroundAndTheTransferGoesOn) {
    ScriptedSource target;
    int pieces = 3;
    std::vector<long> totals;
    const socketcalls::ReceiveSteps steps{[] { return true; },
                                          [&](char* buffer, int length) {
                                              std::fill_n(buffer, length, 'x');
                                              return pieces-- > 0 ? length : 0;
                                          },
                                          [&](long bytesSoFar) {
                                              totals.push_back(bytesSoFar);
                                              return true;
                                          }};
    long total = kHighest - 300;
    EXPECT_EQ(socketcalls::receiveIntoSource(target, OM_WRITE, steps, 0, total), UTE_SUCCESS);
    EXPECT_EQ(totals, (std::vector<long>{kHighest - 44, kLowest + 211, kLowest + 467}));
    EXPECT_EQ(total, kLowest + 467);
    EXPECT_EQ(target.content.size(), 768u);
}

}  // namespace
