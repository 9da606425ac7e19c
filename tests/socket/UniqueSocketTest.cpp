#include <gtest/gtest.h>

#include "tests/socket/Peers.h"

namespace {

class UniqueSocketTest : public testing::Test {
  protected:
    static bool isOpen(SOCKET socket) {
        int type = 0;
        int length = sizeof type;
        return ::getsockopt(socket, SOL_SOCKET, SO_TYPE, reinterpret_cast<char*>(&type), &length) ==
               0;
    }

    peers::WinsockSession m_winsock;
    UniqueSocket m_first = peers::bindToLoopback();
    UniqueSocket m_second = peers::bindToLoopback();
    SOCKET m_firstHandle = m_first.get();
    SOCKET m_secondHandle = m_second.get();
};

TEST_F(UniqueSocketTest, ClosesAtTheEndOfItsLife) {
    { UniqueSocket owner = std::move(m_first); }
    EXPECT_FALSE(isOpen(m_firstHandle));
    EXPECT_FALSE(m_first);
}

TEST_F(UniqueSocketTest, ResetClosesTheOldHandle) {
    m_first.reset(m_second.release());
    EXPECT_FALSE(isOpen(m_firstHandle));
    EXPECT_EQ(m_first.get(), m_secondHandle);
    EXPECT_TRUE(isOpen(m_secondHandle));
}

TEST_F(UniqueSocketTest, MoveAssignmentClosesTheOldHandle) {
    m_first = std::move(m_second);
    EXPECT_FALSE(isOpen(m_firstHandle));
    EXPECT_TRUE(isOpen(m_secondHandle));
    EXPECT_EQ(m_second.get(), INVALID_SOCKET);
}

TEST_F(UniqueSocketTest, SelfAssignmentKeepsTheHandle) {
    UniqueSocket& same = m_first;
    m_first = std::move(same);
    EXPECT_TRUE(isOpen(m_firstHandle));
    EXPECT_EQ(m_first.get(), m_firstHandle);
}

TEST_F(UniqueSocketTest, ReleaseHandsTheHandleOver) {
    const SOCKET handle = m_first.release();
    EXPECT_FALSE(m_first);
    EXPECT_TRUE(isOpen(handle));
    ::closesocket(handle);
}

}  // namespace
