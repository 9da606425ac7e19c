#include <gtest/gtest.h>

#include "NyServer/base/port/Port.h"

namespace {

// Not even one that has ended before `start` returns is missed.
TEST(Thread, CanBeWaitedForHoweverSoonItEnds) {
    for (int i = 0; i < 500; ++i) {
        port::Thread thread;
        ASSERT_NE(thread.start([](void*) {}, nullptr), port::kNoThread);
        ASSERT_TRUE(thread.waitForEnd(30'000)) << i;
        EXPECT_TRUE(thread.waitForEnd(0)) << "again";
    }
}

}  // namespace
