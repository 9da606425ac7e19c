#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/socket/ProbeServer.h"
#include "tests/support/Threads.h"

namespace {

using testing::IsEmpty;

// The end of a server while its threads are in different places.
class ServerRundownTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server().start()); }
    void TearDown() override {
        m_gate.open();
        destroy();
    }

    ProbeServer& server() { return *m_server; }
    void destroy() { m_server.reset(); }
    void haveHandlersWait() {
        server().onConnect = [this](LoggingWorker&) { m_gate.pass(); };
    }
    void haveReleasesWait() {
        server().onConnect = [](LoggingWorker&) {};
        server().onRelease = [this](CUT_WSThread*) { m_gate.pass(); };
    }
    // A connection with a thread of the server at the gate.
    peers::Connection connectionAtTheGate() {
        peers::Connection peer = server().connection();
        EXPECT_TRUE(m_gate.awaitArrivals());
        return peer;
    }
    // The action does not end before the gate is opened.
    template <class Action>
    void expectWaitsForTheGate(Action action) {
        std::atomic<bool> isOpening = false;
        const std::jthread opener([&] {
            ::Sleep(100);
            isOpening = true;
            m_gate.open();
        });
        action();
        EXPECT_TRUE(isOpening);
    }
    // The handler ends without a server: its worker is deleted, and not given back.
    void expectHandlerRunsOn(peers::Connection& peer) {
        EXPECT_EQ(m_log->count("worker deleted"), 0);
        m_gate.open();
        EXPECT_EQ(peer.receiveAll(), "");
        EXPECT_EQ(m_log->count("ReleaseInstance"), 0);
        EXPECT_EQ(m_log->count("worker deleted"), 1);
    }

    peers::WinsockSession m_winsock;
    Gate m_gate;
    std::unique_ptr<ProbeServer> m_server = std::make_unique<ProbeServer>();
    std::shared_ptr<ServerLog> m_log = m_server->log;
};

TEST_F(ServerRundownTest, LetsNobodyInOnceItIsClosed) {
    EXPECT_TRUE(server().CloseDoorIfIdle()) << "nobody is there";
    EXPECT_TRUE(server().CloseDoorIfIdle());
    EXPECT_EQ(server().connection().receiveAll(), "");
    EXPECT_THAT(m_log->events(), IsEmpty());
}

TEST_F(ServerRundownTest, StaysOpenWhileAHandlerRuns) {
    haveHandlersWait();
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_FALSE(server().CloseDoorIfIdle());
    peers::Connection second = server().connection();
    EXPECT_TRUE(m_log->await("OnConnect", 2));
    m_gate.open();
    EXPECT_TRUE(eventually([this] { return server().CloseDoorIfIdle(); }));
    EXPECT_EQ(m_log->count("ReleaseInstance"), 2);
}

TEST_F(ServerRundownTest, StaysOpenForKilledWorkersToBeReleased) {
    haveHandlersWait();
    const peers::Connection peer = connectionAtTheGate();
    server().ThreadListKill();
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenAndIsWaitedForWhileAWorkerThatIsNotCountedAnyMoreIsReleased) {
    haveReleasesWait();
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_EQ(server().GetNumConnections(), 0);
    EXPECT_FALSE(server().CloseDoorIfIdle());
    expectWaitsForTheGate([this] { server().CloseDoor(); });
}

TEST_F(ServerRundownTest, StaysOpenWhileAWorkerThatIsNotYetCountedIsMade) {
    server().onCreate = [this] { m_gate.pass(); };
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_EQ(server().GetNumConnections(), 0);
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenAndIsWaitedForDuringOnCanAccept) {
    server().onCanAccept = [this] { m_gate.pass(); };
    peers::Connection peer = connectionAtTheGate();
    EXPECT_FALSE(server().CloseDoorIfIdle());
    expectWaitsForTheGate([this] { server().CloseDoor(); });
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("CreateInstance"), 0);
}

TEST_F(ServerRundownTest, IsNotWaitedForWhileAHandlerRuns) {
    haveHandlersWait();
    peers::Connection peer = connectionAtTheGate();
    server().CloseDoor();
    EXPECT_EQ(server().GetNumConnections(), 1);
    expectHandlerRunsOn(peer);
    EXPECT_EQ(server().GetNumConnections(), 0);
}

TEST_F(ServerRundownTest, OutlivesItsServerForAHandlerThatRunsOn) {
    haveHandlersWait();
    // By the base's destructor, when the derived one does not.
    server().ending = ProbeServer::Ending::LeavesTheDoorOpen;
    peers::Connection peer = connectionAtTheGate();
    destroy();
    expectHandlerRunsOn(peer);
}

TEST_F(ServerRundownTest, LetsAHandlerDestroyItsServer) {
    const int before = countThreadsAtRest();
    server().ending = ProbeServer::Ending::ClosesTheDoor;
    server().onConnect = [this](LoggingWorker&) {
        destroy();
        m_gate.pass();
    };
    peers::Connection peer = connectionAtTheGate();
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("worker deleted"), 1);
    EXPECT_TRUE(eventually([&] { return countThreads() < before; }));
}

TEST_F(ServerRundownTest, LetsAReleaseDestroyItsServer) {
    server().ending = ProbeServer::Ending::ClosesTheDoor;
    server().onConnect = [](LoggingWorker&) {};
    server().onRelease = [this](CUT_WSThread*) { destroy(); };
    EXPECT_EQ(server().connection().receiveAll(), "");
    EXPECT_TRUE(m_log->await("worker deleted"));
}

TEST_F(ServerRundownTest, LetsADestructorWaitForItsWorkers) {
    haveHandlersWait();
    const peers::Connection peer = connectionAtTheGate();
    expectWaitsForTheGate([this] { destroy(); });
    EXPECT_EQ(m_log->count("ReleaseInstance"), 1);
}

}  // namespace
