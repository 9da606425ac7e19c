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
    EXPECT_EQ(nullptr, list.room(1));
    list.add(nullptr);
    const void** const room = list.room(511);
    ASSERT_NE(nullptr, room);
    EXPECT_EQ(nullptr, list.room(512));
    room[0] = room[1] = &list;
    EXPECT_EQ(1u, list.size());
    list.addWritten(2);
    EXPECT_EQ(3u, list.size());
    EXPECT_EQ(&list, list[2]);
}

}  // namespace
