#include "apps/central/PortPool.h"

#include <gtest/gtest.h>

namespace {

using Ports = std::vector<LONG>;

TEST(PortPool, HandsOutEachPortOnce) {
    PortPool pool({7, 5});
    EXPECT_EQ(7, pool.take());
    EXPECT_EQ(5, pool.take());
    EXPECT_EQ(0, pool.take());
}

TEST(PortPool, HandsOutAgainWhatWasGivenBack) {
    PortPool pool({7, 5});
    pool.take();
    pool.giveBack(7);
    pool.giveBack(99);
    EXPECT_EQ(7, pool.take());
    EXPECT_EQ(5, pool.take());
}

TEST(PortRange, HoldsBothItsEnds) {
    EXPECT_EQ((Ports{8, 9, 10}), *parsePortRange("8-10"));
    EXPECT_EQ(Ports{65535}, *parsePortRange("65535-65535"));
}

TEST(PortRange, AnythingElseIsRefused) {
    for (const char* text :
         {"", "-", "8", "8-", "-8", "10-8", "0-8", "8-65536", "8-10x", "a-b", "8 - 10", "-8-10"})
        EXPECT_FALSE(parsePortRange(text)) << text;
}

}  // namespace
