#include "NyServer/base/mfc/detail/AfxPointerList.h"

#include <gtest/gtest.h>

namespace {

TEST(PointerList, IsFullAtItsLimit) {
    constexpr size_t kLimit = 1026;  // two blocks and a little
    static const char places[kLimit] = {};
    AfxPointerList<kLimit> list;
    EXPECT_EQ(0u, list.size());
    for (const char& place : places) EXPECT_TRUE(list.add(&place));
    EXPECT_FALSE(list.add(places));
    EXPECT_EQ(kLimit, list.size());
    for (size_t i = 0; i < kLimit; ++i) ASSERT_EQ(&places[i], list[i]);
}

TEST(PointerList, TakesManyAtOnceWithinABlock) {
    AfxPointerList<1026> list;
    EXPECT_EQ(0u, list.space());
    list.add(nullptr);
    EXPECT_EQ(511u, list.space());
    list.next()[0] = list.next()[1] = &list;
    EXPECT_EQ(1u, list.size());
    list.addWritten(2);
    EXPECT_EQ(3u, list.size());
    EXPECT_EQ(&list, list[2]);
}

}  // namespace
