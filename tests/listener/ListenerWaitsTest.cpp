#include "tests/listener/ListenerTest.h"

namespace {

using ListenerWaits = ListenerTest;

// A peer is checked after 51 rounds of 100 ms, and what a busy machine adds to each.
constexpr ULONGLONG kChecked = 5100;
constexpr ULONGLONG kSoonest = 4500;
constexpr ULONGLONG kLatest = 15000;

TEST_F(ListenerWaits, ASilentPeerStaysConnected) {
    auto peer = connect();
    port::sleep(kChecked + 1000);
    EXPECT_EQ(m_listener.GetNumConnections(), 1);
    EXPECT_TRUE(isAlive(peer));
}

TEST_F(ListenerWaits, APausedWorkerNoticesThatItsPeerHasClosed) {
    const auto start = port::milliseconds();
    auto peer = connect();
    auto silent = connect();
    m_listener.pause(true);
    peer.close();
    ASSERT_TRUE(m_listener.awaitWorkers(1));
    const auto waited = port::milliseconds() - start;
    EXPECT_GT(waited, kSoonest);
    EXPECT_LT(waited, kLatest);
    m_listener.pause(false);
    EXPECT_TRUE(isAlive(silent));
}

TEST_F(ListenerWaits, ALengthThatIsShortAfter15SecondsIsAnEmptyBodyAndTheStreamContinues) {
    auto peer = connect();
    const auto start = port::milliseconds();
    peer.send(wireOf(50));
    for (int i = 0; i < 3; ++i) {
        peer.send("\x01");
        port::sleep(6000);
    }
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload(), "");
    EXPECT_LT(port::milliseconds() - start, 26000u);
    peer.send(frame(51, "in step"));
    EXPECT_EQ(postedFor(peer).at(1).payload(), "in step");
}

TEST_F(ListenerWaits, ALengthThatArrivesSlowlyIsWhole) {
    auto peer = connect();
    const std::string whole = frame(50, "whole");
    peer.send(whole.substr(0, 5));
    for (size_t i = 5; i < 8; ++i) {
        port::sleep(3000);
        peer.send(whole.substr(i, i == 7 ? std::string::npos : 1));
    }
    EXPECT_EQ(postedFor(peer).at(0).payload(), "whole");
}

TEST_F(ListenerWaits, AnUnfinishedHeaderDelaysTheEndBy15SecondsAtMost) {
    auto peer = connect();
    peer.send(wireOf(50) + std::string(3, '\x01'));
    port::sleep(1000);
    const auto start = port::milliseconds();
    m_listener.SetShutDownFlag(1);
    EXPECT_TRUE(m_listener.awaitWorkers(0));
    EXPECT_LT(port::milliseconds() - start, 20000u);
}

}  // namespace
