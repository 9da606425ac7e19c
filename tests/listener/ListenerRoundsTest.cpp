// The rounds of a worker, counted by the times that it asks for an action.
#include <cstring>

#include "tests/listener/ListenerTest.h"
#include "tests/support/System.h"

namespace {

constexpr int kFromSocket = ProbeListenerWorker::kFromSocket;
constexpr ULONGLONG kSomeRounds = 500;  // milliseconds

class ListenerRounds : public ScriptedListenerTest {
  protected:
    // In the first `count` rounds in which there is something to read, nothing comes; `action` is
    // left in the buffer.
    void failRounds(int count, int result, int action = 0) {
        m_listener.script->receiveBy([this, count, result, action](char* buffer, int, int timeOut) {
            if (timeOut != 0 || m_listener.script->rounds() > count) return kFromSocket;
            std::memcpy(buffer, &action, sizeof action);
            return result;
        });
    }
    // A peer that sends the bytes and closes; the rounds of its worker.
    int roundsOfAPeerThatSends(const std::string& bytes) {
        m_listener.connection().send(bytes);
        EXPECT_TRUE(eventually([&] { return rounds() > 0; }));
        EXPECT_TRUE(m_listener.awaitWorkers(0));
        return rounds();
    }
    int rounds() { return m_listener.script->rounds(); }
    // The milliseconds from the shut-down flag to the end of a worker that was prepared so. The
    // shortest of a few, since a busy machine adds to each.
    template <class Prepare>
    ULONGLONG shortestEnd(Prepare prepare) {
        ULONGLONG shortest = ~0ull;
        for (int i = 0; i < 5 && shortest >= kSomeRounds; ++i) {
            m_listener.SetShutDownFlag(0);
            auto peer = connect();
            prepare(peer);
            const auto start = port::milliseconds();
            m_listener.SetShutDownFlag(1);
            EXPECT_TRUE(m_listener.awaitWorkers(0));
            shortest = std::min(shortest, port::milliseconds() - start);
        }
        return shortest;
    }
};

TEST_F(ListenerRounds, AClosedPeerIsNoticedInThe51stIdleRound) {
    EXPECT_EQ(roundsOfAPeerThatSends(""), 51);
}

TEST_F(ListenerRounds, AFailedReceiveIsAnIdleRoundAndAMessageDoesNotResetTheirCount) {
    failRounds(30, -1);
    EXPECT_EQ(roundsOfAPeerThatSends(kProbe), 51 + 1);
}

TEST_F(ListenerRounds, AProbeOfAConnectedPeerResetsTheCount) {
    failRounds(51, 0);
    EXPECT_EQ(roundsOfAPeerThatSends(kProbe), 51 + 1 + 51);
}

TEST_F(ListenerRounds, AnActionWithoutItsReceiveIsNoIdleRoundWhileThePeerIsConnected) {
    failRounds(200, -1, 50);
    auto peer = connect();
    EXPECT_TRUE(isAlive(peer));
    EXPECT_EQ(rounds(), 201);
    EXPECT_EQ(m_window.count(), 0u);
    peer.close();
    ASSERT_TRUE(m_listener.awaitWorkers(0));
    EXPECT_EQ(rounds(), 201 + 51);
}

TEST_F(ListenerRounds, AnActionWithoutItsReceiveMakesItCheckThePeerAtOnce) {
    failRounds(200, 0, 1);
    EXPECT_EQ(roundsOfAPeerThatSends(""), 1);
}

TEST_F(ListenerRounds, TheShutDownFlagEndsTheWorkerAfterTheMessage) {
    auto peer = connect();
    m_listener.script->receiveBy([this](char*, int, int) {
        m_listener.SetShutDownFlag(1);
        return kFromSocket;
    });
    peer.send(kProbe + kProbe);
    EXPECT_EQ(peer.receive(), kAlive);
    EXPECT_TRUE(peer.awaitClose());
    EXPECT_TRUE(m_listener.awaitWorkers(0));
    EXPECT_EQ(rounds(), 1);
}

TEST_F(ListenerRounds, TheShutDownFlagEndsAnIdleWorkerWithinARound) {
    EXPECT_LT(shortestEnd([](auto&) {}), kSomeRounds);
}

TEST_F(ListenerRounds, AnIdleRoundIsAReportedWaitOfATenthOfASecond) {
    const auto start = port::milliseconds();
    auto peer = connect();
    const int before = m_listener.script->vainWaits;
    ASSERT_TRUE(eventually([&] { return m_listener.script->vainWaits >= before + 5; }));
    EXPECT_GE(port::milliseconds() - start, 400u);
    EXPECT_EQ(m_listener.script->readyWaits, 0);
    EXPECT_TRUE(isAlive(peer));
    EXPECT_GE(m_listener.script->readyWaits, 1);
}

TEST_F(ListenerRounds, EachRoundOfAPausedWorkerWaitsForItsSocketFirstAndLeavesItsBytes) {
    auto peer = connect();
    m_listener.pause(true);
    peer.send(kProbe);
    EXPECT_TRUE(eventually([&] { return m_listener.script->readyWaits >= 3; }));
    EXPECT_EQ(rounds(), 0);
    m_listener.pause(false);
    EXPECT_EQ(peer.receive(), kAlive);
}

TEST_F(ListenerRounds, APausedWorkerDoesNotSpin) {
    auto peer = connect();
    auto silent = connect();
    auto closed = connect();
    m_listener.pause(true);
    peer.send(kProbe);
    closed.close();
    port::sleep(150);
    const auto before = processorTime();
    port::sleep(1000);
    EXPECT_LT(processorTime() - before,
              50u);  // a spinning thread's share on a busy machine is more
}

TEST_F(ListenerRounds, APausedWorkerSeesTheShutDownFlag) {
    EXPECT_LT(shortestEnd([this](auto& peer) {
                  m_listener.pause(true);
                  peer.send(kProbe);
              }),
              kSomeRounds);
    EXPECT_EQ(rounds(), 0);
}

}  // namespace
