#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    // A connection with a thread of the server at the gate.
    peers::Connection connectionAtTheGate() {
        peers::Connection peer = server().connection();
        EXPECT_TRUE(m_gate.awaitArrivals());
        return peer;
    }
    void openSoon() {
        m_opener = std::jthread([this] {
            ::Sleep(100);
            m_isOpening = true;
            m_gate.open();
        });
    }

    peers::WinsockSession m_winsock;
    Gate m_gate;
    std::atomic<bool> m_isOpening = false;
    std::unique_ptr<ProbeServer> m_server = std::make_unique<ProbeServer>();
    std::shared_ptr<ServerLog> m_log = m_server->log;
    std::jthread m_opener;
};

TEST_F(ServerRundownTest, ClosesWhenNobodyIsThere) {
    EXPECT_TRUE(server().CloseDoorIfIdle());
    EXPECT_TRUE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, LetsNobodyInOnceItIsClosed) {
    ASSERT_TRUE(server().CloseDoorIfIdle());
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

TEST_F(ServerRundownTest, StaysOpenWhileAWorkerThatIsNotCountedAnyMoreIsReleased) {
    server().onConnect = [](LoggingWorker&) {};
    server().onRelease = [this](CUT_WSThread*) { m_gate.pass(); };
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_EQ(server().GetNumConnections(), 0);
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenWhileAWorkerThatIsNotYetCountedIsMade) {
    server().onCreate = [this] { m_gate.pass(); };
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_EQ(server().GetNumConnections(), 0);
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenDuringOnCanAccept) {
    server().onCanAccept = [this] { m_gate.pass(); };
    const peers::Connection peer = connectionAtTheGate();
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, StaysOpenForKilledWorkersToBeReleased) {
    haveHandlersWait();
    const peers::Connection peer = connectionAtTheGate();
    server().ThreadListKill();
    EXPECT_FALSE(server().CloseDoorIfIdle());
}

TEST_F(ServerRundownTest, IsWaitedForWhileAWorkerIsReleased) {
    server().onConnect = [](LoggingWorker&) {};
    server().onRelease = [this](CUT_WSThread*) { m_gate.pass(); };
    const peers::Connection peer = connectionAtTheGate();
    openSoon();
    server().CloseDoor();
    EXPECT_TRUE(m_isOpening);
}

TEST_F(ServerRundownTest, IsWaitedForDuringOnCanAccept) {
    server().onCanAccept = [this] { m_gate.pass(); };
    peers::Connection peer = connectionAtTheGate();
    openSoon();
    server().CloseDoor();
    EXPECT_TRUE(m_isOpening);
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("CreateInstance"), 0);
}

TEST_F(ServerRundownTest, IsNotWaitedForWhileAHandlerRuns) {
    haveHandlersWait();
    peers::Connection peer = connectionAtTheGate();
    server().CloseDoor();
    EXPECT_EQ(server().GetNumConnections(), 1);
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(server().GetNumConnections(), 0);
    EXPECT_EQ(m_log->count("ReleaseInstance"), 0);
    EXPECT_EQ(m_log->count("worker deleted"), 1);
}

TEST_F(ServerRundownTest, OutlivesItsServerForAHandlerThatRunsOn) {
    haveHandlersWait();
    server().ending = ProbeServer::Ending::ClosesTheDoor;
    peers::Connection peer = connectionAtTheGate();
    destroy();
    EXPECT_EQ(m_log->count("worker deleted"), 0);
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("ReleaseInstance"), 0);
    EXPECT_EQ(m_log->count("worker deleted"), 1);
}

TEST_F(ServerRundownTest, IsClosedByTheBaseDestructorToo) {
    haveHandlersWait();
    server().ending = ProbeServer::Ending::LeavesTheDoorOpen;
    peers::Connection peer = connectionAtTheGate();
    destroy();
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_log->count("ReleaseInstance"), 0);
    EXPECT_EQ(m_log->count("worker deleted"), 1);
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
    openSoon();
    destroy();
    EXPECT_TRUE(m_isOpening);
    EXPECT_EQ(m_log->count("ReleaseInstance"), 1);
}

}  // namespace
