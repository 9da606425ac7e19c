// How long StopAccept takes while OnCanAccept does not return. The bound is wide above, for a
// busy machine.
#include <chrono>
#include <semaphore>

#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class StopWait : public ServerTest {
  protected:
    void SetUp() override {
        m_threadsBefore = countThreadsAtRest();
        m_server.onCanAccept = [this] {
            m_isInOnCanAccept = true;
            static_cast<void>(m_verdict.try_acquire_for(90s));
            m_isInOnCanAccept = false;
        };
        start();
        m_port = m_server.GetPort();
        m_server.codes.clear();
    }
    void TearDown() override {
        m_verdict.release();
        ServerTest::TearDown();
    }

    peers::Connection connectionInOnCanAccept() {
        peers::Connection peer = m_server.connection();
        EXPECT_TRUE(eventually([this] { return m_isInOnCanAccept.load(); }));
        return peer;
    }
    template <class Action>
    void expectThirtySeconds(Action action) {
        const auto start = std::chrono::steady_clock::now();
        action();
        const auto time = std::chrono::steady_clock::now() - start;
        EXPECT_GE(time, 28900ms);
        EXPECT_LT(time, 45s);
        EXPECT_TRUE(m_isInOnCanAccept);
    }
    void expectNoThreadLeft() {
        EXPECT_TRUE(eventually([this] { return countThreads() <= m_threadsBefore; }))
            << countThreads() << " threads, " << m_threadsBefore << " before";
    }

    // Not a gate: a thread that is ended by force must not wait for a condition variable.
    std::counting_semaphore<2> m_verdict{0};
    std::atomic<bool> m_isInOnCanAccept = false;
    unsigned int m_port = 0;
    int m_threadsBefore = 0;
};

TEST_F(StopWait, EndsAfterThirtySecondsAndCleansUpAfterOnCanAccept) {
    peers::Connection peer = connectionInOnCanAccept();
    peer.send("hi\r\n");
    expectThirtySeconds([this] { EXPECT_EQ(m_server.StopAccept(), 0); });
    EXPECT_THAT(m_server.codes, ElementsAre(0)) << "it could be woken: no force is used";
    EXPECT_FALSE(peers::isReachable(m_port));

    m_verdict.release();
    EXPECT_EQ(peer.receiveAll(), ProbeServer::kAnswer);
    expectNoThreadLeft();
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    m_server.onCanAccept = [] {};
    EXPECT_TRUE(m_server.start()) << "and it can start again";
    EXPECT_TRUE(m_server.isReachable());
}

// The connection that is to wake the accepting thread is not answered: the deadline is for both.
TEST_F(StopWait, EndsAfterThirtySecondsWhenTheQueueIsFull) {
    peers::Connection peer = connectionInOnCanAccept();
    const std::vector<NySe::UniqueSocket> queued = peers::connectWhileAnswered(m_port, 64);
    ASSERT_LT(queued.size(), 64u) << "the queue is full";
    expectThirtySeconds([this] { EXPECT_EQ(m_server.StopAccept(), 0); });
    EXPECT_THAT(m_server.codes, ElementsAre(19));
    EXPECT_FALSE(peers::isReachable(m_port));
    if (!endsThreadsByForce()) m_verdict.release();
    EXPECT_EQ(peer.receiveAll(), "") << "OnCanAccept was ended by force, or too late";
    expectNoThreadLeft();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_TRUE(m_server.RunDownIfIdle());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << "nothing more is waited for";
}

}  // namespace
