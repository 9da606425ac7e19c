#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/socket/ProbeServer.h"
#include "tests/support/Handles.h"
#include "tests/support/Threads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Stopping : public testing::Test {
  protected:
    void TearDown() override { m_gate.open(); }

    bool isReachable() { return static_cast<bool>(peers::connectTo(m_listeningPort)); }
    void start() {
        ASSERT_TRUE(m_server.start());
        m_listeningPort = m_server.GetPort();
        m_server.codes.clear();
    }
    // Makes the server's own connection, which wakes the accepting thread, fail.
    void misdirect() {
        m_server.SetPort(m_nobody.port());
        m_server.codes.clear();
    }
    // The accepting thread waits in OnCanAccept.
    peers::Connection connectionInOnCanAccept() {
        m_server.onCanAccept = [this] { m_gate.pass(); };
        peers::Connection peer = m_server.connection();
        EXPECT_TRUE(m_gate.awaitArrivals());
        return peer;
    }
    // The accepting thread is where only force ends it before long.
    peers::Connection connectionHeldInOnCanAccept() {
        m_isInOnCanAccept = false;
        m_server.onCanAccept = [this] {
            m_isInOnCanAccept = true;
            ::Sleep(20000);
        };
        peers::Connection peer = m_server.connection();
        EXPECT_TRUE(eventually([this] { return m_isInOnCanAccept.load(); }));
        return peer;
    }
    // Whether ten stops use up no more handles than that, beside a few that the system may keep.
    bool usesUpAtMost(size_t atMost, const std::function<void()>& stop) {
        stop();
        const size_t before = handleLevel();
        for (int i = 0; i < 10; ++i) stop();
        return eventually([&] { return handleLevel() <= before + atMost + 4; });
    }

    peers::WinsockSession m_winsock;
    peers::RefusingPort m_nobody;
    Gate m_gate;
    ProbeServer m_server;
    unsigned int m_listeningPort = 0;
    std::atomic<bool> m_isInOnCanAccept = false;
};

TEST_F(Stopping, ClosesTheListeningSocket) {
    start();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_FALSE(isReachable());
    EXPECT_THAT(m_server.codes, ElementsAre(0));  // of its own connection
    EXPECT_THAT(m_server.statuses, IsEmpty());
}

TEST_F(Stopping, DoesNotCallOnCanAcceptForItsOwnConnection) {
    start();
    m_server.StopAccept();
    EXPECT_THAT(m_server.log->events(), IsEmpty());
}

TEST_F(Stopping, LeavesNoAcceptingThread) {
    const int before = countThreadsAtRest();
    start();
    EXPECT_GT(countThreads(), before);
    m_server.StopAccept();
    EXPECT_LE(countThreads(), before);
}

TEST_F(Stopping, MayBeRepeated) {
    start();
    EXPECT_EQ(m_server.StopAccept(), 0);
    m_server.codes.clear();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_THAT(m_server.codes, IsEmpty());
}

TEST_F(Stopping, MayBeFollowedByAnotherStart) {
    for (int i = 0; i < 3; ++i) {
        start();
        peers::Connection peer = m_server.connection();
        peer.send("hi\r\n");
        EXPECT_NE(peer.receiveAll(), "");
        EXPECT_EQ(m_server.StopAccept(), 0);
        EXPECT_FALSE(isReachable());
    }
}

TEST_F(Stopping, LetsWorkersRunOn) {
    start();
    m_server.onConnect = [this](LoggingWorker& worker) {
        m_gate.pass();
        worker.Send("still here", -1, 0);
    };
    peers::Connection peer = m_server.connection();
    ASSERT_TRUE(m_gate.awaitArrivals());
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_EQ(m_server.GetNumConnections(), 1);
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "still here");
    EXPECT_EQ(m_server.log->count("ReleaseInstance"), 1);
}

TEST_F(Stopping, WaitsForOnCanAcceptAndLetsThePeerIn) {
    start();
    peers::Connection peer = connectionInOnCanAccept();
    peer.send("hi\r\n");
    std::thread opener([this] {
        ::Sleep(200);
        m_gate.open();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    opener.join();
    EXPECT_EQ(peer.receiveAll(), "Connect Successful ... Now Disconnecting.");
}

TEST_F(Stopping, EndsTheThreadWhenItCannotBeWoken) {
    const int before = countThreadsAtRest();
    start();
    misdirect();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_THAT(m_server.codes, ElementsAre(19));
    EXPECT_EQ(m_server.statuses.at(0), L"Connection refused.");
    EXPECT_LE(countThreads(), before);
    EXPECT_FALSE(isReachable());
}

TEST_F(Stopping, MayBeFollowedByAnotherStartAfterForce) {
    for (int i = 0; i < 3; ++i) {
        start();
        misdirect();
        EXPECT_EQ(m_server.StopAccept(), 0);
    }
    start();
    EXPECT_TRUE(isReachable());
}

TEST_F(Stopping, LosesNoHandlesWhenTheThreadCannotBeWoken) {
    EXPECT_TRUE(usesUpAtMost(0, [this] {
        start();
        misdirect();
        m_server.StopAccept();
    }));
}

// Winsock has a handle for each thread that waits in it, which is lost with the thread.
TEST_F(Stopping, LosesNoHandlesOfItsOwnByForce) {
    EXPECT_TRUE(usesUpAtMost(10, [this] {
        start();
        const peers::Connection peer = connectionHeldInOnCanAccept();
        misdirect();
        m_server.StopAccept();
    }));
}

TEST_F(Stopping, ClosesOnAPeerWhenOnCanAcceptIsEndedByForce) {
    const int before = countThreadsAtRest();
    start();
    peers::Connection peer = connectionHeldInOnCanAccept();
    misdirect();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_LE(countThreads(), before);
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_TRUE(m_server.CloseDoorIfIdle());
}

TEST_F(Stopping, ConnectsToTheLoopbackAddressOnly) {
    ASSERT_EQ(m_server.ConnectToPort(peers::freePort(), 5, AF_INET, ::htonl(0x7F000002)), 0);
    ASSERT_EQ(m_server.StartAccept(), 0);
    m_server.codes.clear();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_THAT(m_server.codes, ElementsAre(19));
}

TEST_F(Stopping, KeepsAServerThatDoesNotListenMarkedAsAccepting) {
    const int before = countThreadsAtRest();
    EXPECT_EQ(m_server.StartAccept(), 0);
    EXPECT_TRUE(eventually([&] { return countThreads() <= before; }));
    EXPECT_EQ(m_server.StartAccept(), 1);
    misdirect();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_THAT(m_server.codes, ElementsAre(19));
    start();
    EXPECT_TRUE(isReachable());
}

TEST_F(Stopping, HappensInTheDestructor) {
    unsigned int port = 0;
    const int before = countThreadsAtRest();
    {
        ProbeServer server;
        ASSERT_TRUE(server.start());
        port = server.GetPort();
    }
    EXPECT_FALSE(peers::connectTo(port));
    EXPECT_LE(countThreads(), before);
}

// OnCanAccept holds the destructor of the base until the worker has seen the flag.
TEST_F(Stopping, RaisesTheShutDownFlagInTheDestructor) {
    struct Server : CUT_WSServer {
        struct Worker : CUT_WSThread {
            explicit Worker(Server& server) : m_server(server) {}
            void OnConnect() override {
                Gate& gate = m_server.m_gate;
                std::atomic<bool>& isSeen = m_server.m_isSeen;
                m_server.m_serving.open();
                isSeen = eventually([this] { return m_owner->GetShutDownFlag() == 1; },
                                    std::chrono::seconds(20));
                gate.open();
            }
            Server& m_server;
        };
        Server(Gate& serving, Gate& gate, std::atomic<bool>& isSeen)
            : m_serving(serving), m_gate(gate), m_isSeen(isSeen) {}
        CUT_WSThread* CreateInstance() override { return new Worker(*this); }
        void ReleaseInstance(CUT_WSThread* worker) override { delete worker; }
        long OnCanAccept(const char*) override {
            if (++m_asked == 1) return 1;
            m_gate.pass();
            return 0;
        }
        Gate& m_serving;
        Gate& m_gate;
        std::atomic<bool>& m_isSeen;
        int m_asked = 0;
    };
    Gate serving;
    std::atomic<bool> isSeen = false;
    auto server = std::make_unique<Server>(serving, m_gate, isSeen);
    ASSERT_EQ(server->ConnectToPort(0, 5, AF_INET, ::htonl(INADDR_LOOPBACK)), 0);
    server->SetPort(server->GetBoundPort());
    ASSERT_EQ(server->StartAccept(), 0);
    peers::Connection served = peers::connectionTo(server->GetPort());
    ASSERT_TRUE(serving.pass());
    const peers::Connection asked = peers::connectionTo(server->GetPort());
    ASSERT_TRUE(m_gate.awaitArrivals());
    server.reset();
    EXPECT_TRUE(isSeen);
    EXPECT_TRUE(served.awaitClose());
}

TEST_F(Stopping, ClosesAListeningSocketThatWasNeverUsedInTheDestructor) {
    unsigned int port = 0;
    {
        ProbeServer server;
        ASSERT_EQ(server.listen(), 0);
        port = server.GetPort();
        EXPECT_TRUE(peers::connectTo(port));
    }
    EXPECT_FALSE(peers::connectTo(port));
}

TEST_F(Stopping, OnlyStoresAPortThatIsSetLater) {
    start();
    misdirect();
    EXPECT_TRUE(isReachable());
    EXPECT_FALSE(peers::connectTo(m_server.GetPort()));
}

}  // namespace
