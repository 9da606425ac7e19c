#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

using testing::IsEmpty;

// The end of a server while its threads are in different places.
class ServerRundownTest : public ServerTest {
  protected:
    void SetUp() override { start(); }

    // The action does not end before the gate is opened.
    template <class Action>
    void expectWaitsForTheGate(Action action) {
        std::atomic<bool> isOpening = false;
        const std::jthread opener([&] {
            port::sleep(100);
            isOpening = true;
            m_gate.open();
        });
        action();
        EXPECT_TRUE(isOpening);
    }
    // While a thread that is not counted is at the gate.
    void expectOpenAndWaitedFor() {
        const peers::Connection peer = connectionAtTheGate();
        EXPECT_EQ(m_server.GetNumConnections(), 0);
        EXPECT_FALSE(m_server.RunDownIfIdle());
        expectWaitsForTheGate([this] { m_server.RunDown(); });
    }
    // The handler ends without a server: its worker is deleted, and not given back.
    void expectHandlerRunsOn(peers::Connection& peer) {
        EXPECT_EQ(m_log->count("worker deleted"), 0);
        m_gate.open();
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(m_log->count("ReleaseInstance"), 0);
        EXPECT_EQ(m_log->count("worker deleted"), 1);
    }
};

TEST_F(ServerRundownTest, RefusesEntryOnceItIsClosed) {
    EXPECT_TRUE(m_server.RunDownIfIdle()) << "nobody is there";
    EXPECT_TRUE(m_server.RunDownIfIdle());
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_THAT(m_log->events(), IsEmpty());
}

TEST_F(ServerRundownTest, StaysOpenWhileAHandlerRuns) {
    hold(&ProbeServer::onConnect);
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_FALSE(m_server.RunDownIfIdle());
    peers::Connection second = m_server.connection();
    EXPECT_TRUE(m_log->await("OnConnect", 2));
    m_gate.open();
    EXPECT_TRUE(eventually([this] { return m_server.RunDownIfIdle(); }));
    EXPECT_EQ(m_log->count("ReleaseInstance"), 2);
}

TEST_F(ServerRundownTest, StaysOpenForKilledWorkersToBeReleased) {
    hold(&ProbeServer::onConnect);
    const peers::Connection peer = connectionAtTheGate();
    m_server.ThreadListKill();
    EXPECT_FALSE(m_server.RunDownIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenAndIsWaitedForWhileAWorkerThatIsNotCountedAnyMoreIsReleased) {
    m_server.onConnect = [](LoggingWorker&) {};
    hold(&ProbeServer::onRelease);
    expectOpenAndWaitedFor();
}

TEST_F(ServerRundownTest, StaysOpenAndIsWaitedForWhileAWorkerThatIsNotYetCountedIsCreated) {
    hold(&ProbeServer::onCreate);
    expectOpenAndWaitedFor();
}

TEST_F(ServerRundownTest, StaysOpenAndIsWaitedForDuringOnCanAccept) {
    hold(&ProbeServer::onCanAccept);
    expectOpenAndWaitedFor();
    EXPECT_EQ(m_log->count("CreateInstance"), 0);
}

TEST_F(ServerRundownTest, IsNotWaitedForWhileAHandlerRuns) {
    hold(&ProbeServer::onConnect);
    peers::Connection peer = connectionAtTheGate();
    m_server.RunDown();
    EXPECT_EQ(m_server.GetNumConnections(), 1);
    expectHandlerRunsOn(peer);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(ServerRundownTest, OutlivesItsServerForAHandlerThatRunsOn) {
    hold(&ProbeServer::onConnect);
    // By the base's destructor, when the derived one does not.
    m_server.ending = ProbeServer::Ending::StaysOpen;
    peers::Connection peer = connectionAtTheGate();
    destroy();
    expectHandlerRunsOn(peer);
}

TEST_F(ServerRundownTest, AllowsAHandlerToDestroyItsServer) {
    const int before = countThreadsAtRest();
    m_server.ending = ProbeServer::Ending::RunsDown;
    m_server.onConnect = [this](LoggingWorker&) {
        destroy();
        m_gate.pass();
    };
    peers::Connection peer = connectionAtTheGate();
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("worker deleted"), 1);
    EXPECT_TRUE(eventually([&] { return countThreads() < before; }));
}

TEST_F(ServerRundownTest, AllowsAReleaseToDestroyItsServer) {
    m_server.ending = ProbeServer::Ending::RunsDown;
    m_server.onConnect = [](LoggingWorker&) {};
    m_server.onRelease = [this](CUT_WSThread*) { destroy(); };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_TRUE(m_log->await("worker deleted"));
}

}  // namespace
