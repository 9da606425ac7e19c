#include <gtest/gtest.h>

#include "tests/listener/ListenerTest.h"

namespace {

using ListenerWaits = ListenerTest;

// 51 rounds of 100 ms, and what a busy machine adds to each.
constexpr ULONGLONG kChecked = 5100;
constexpr ULONGLONG kSlack = 2500;

TEST_F(ListenerWaits, ASilentPeerStaysConnected) {
    auto peer = connect();
    ::Sleep(kChecked + 1000);
    EXPECT_EQ(m_listener.GetNumConnections(), 1);
    EXPECT_TRUE(isAlive(peer));
}

TEST_F(ListenerWaits, APausedWorkerNoticesThatItsPeerHasClosed) {
    auto peer = connect();
    auto silent = connect();
    m_listener.pause(true);
    const auto start = ::GetTickCount64();
    peer.close();
    ASSERT_TRUE(m_listener.awaitWorkers(1));
    const auto waited = ::GetTickCount64() - start;
    EXPECT_GT(waited, kChecked - 300);
    EXPECT_LT(waited, kChecked + kSlack);
    m_listener.pause(false);
    EXPECT_TRUE(isAlive(silent));
}

}  // namespace
