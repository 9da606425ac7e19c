#include <gtest/gtest.h>

#include "tests/socket/LocalConnection.h"

namespace {

bool isOpen(SOCKET socket) {
    return peers::optionOf(socket, SO_TYPE) == SOCK_STREAM;
}

// What every NySe::UniqueHandle does, shown with sockets.
TEST(UniqueSocketTest, ClosesTheHandleThatItHasAndNoOther) {
    const peers::WinsockSession winsock;
    NySe::UniqueSocket first = peers::bindToLoopback();
    NySe::UniqueSocket second = peers::bindToLoopback();
    NySe::UniqueSocket third = peers::bindToLoopback();
    const SOCKET handles[] = {first.get(), second.get(), third.get()};

    NySe::UniqueSocket& same = first;
    first = std::move(same);
    EXPECT_TRUE(isOpen(handles[0])) << "itself assigned";
    first.reset(second.release());
    EXPECT_FALSE(isOpen(handles[0])) << "reset";
    EXPECT_EQ(first.get(), handles[1]);
    EXPECT_FALSE(second);
    first = std::move(third);
    EXPECT_FALSE(isOpen(handles[1])) << "another assigned";
    EXPECT_TRUE(isOpen(handles[2]));
    EXPECT_EQ(third.get(), INVALID_SOCKET);
    { const NySe::UniqueSocket last = std::move(first); }
    EXPECT_FALSE(isOpen(handles[2])) << "destroyed";
    EXPECT_FALSE(first);
}

}  // namespace
