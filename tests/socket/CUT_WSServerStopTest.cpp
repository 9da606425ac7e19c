#include <chrono>

#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Stopping : public ServerTest {
  protected:
    bool isReachable() { return peers::isReachable(m_listeningPort); }
    void start() {
        ServerTest::start();
        m_listeningPort = m_server.GetPort();
        m_server.codes.clear();
    }
    // Makes the server's own connection, which wakes the accepting thread, fail.
    void misdirect() {
        m_server.SetPort(m_nobody.port());
        m_server.codes.clear();
    }
    // The accepting thread waits in OnCanAccept, where only force ends it before long when it is
    // not let through the gate but sleeps.
    peers::Connection connectionInOnCanAccept(bool isAsleep) {
        m_isInOnCanAccept = false;
        m_server.onCanAccept = [this, isAsleep] {
            m_isInOnCanAccept = true;
            isAsleep ? port::sleep(20000) : static_cast<void>(m_gate.pass());
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

    peers::RefusingPort m_nobody;
    unsigned int m_listeningPort = 0;
    std::atomic<bool> m_isInOnCanAccept = false;
};

TEST_F(Stopping, ClosesTheListeningSocketAndMayBeRepeatedAndFollowedByAnotherStart) {
    const int before = countThreadsAtRest();
    for (int i = 0; i < 3; ++i) {
        start();
        EXPECT_GT(countThreads(), before);
        EXPECT_EQ(m_server.StopAccept(), 0);
        EXPECT_TRUE(eventually([&] { return countThreads() <= before; }));
        EXPECT_FALSE(isReachable());
        EXPECT_EQ(m_server.StopAccept(), 0);
        EXPECT_THAT(m_server.codes, ElementsAre(0));  // of its own connection
    }
    EXPECT_THAT(m_server.statuses, IsEmpty());
    EXPECT_THAT(m_log->events(), IsEmpty()) << "OnCanAccept is not called for that";
}

TEST_F(Stopping, DoesNotEndWorkers) {
    start();
    m_server.onConnect = [this](LoggingWorker& worker) {
        m_gate.pass();
        worker.Send("still here", -1, 0);
    };
    peers::Connection peer = connectionAtTheGate();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_EQ(m_server.GetNumConnections(), 1);
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "still here");
}

TEST_F(Stopping, WaitsForOnCanAcceptAndAcceptsThePeer) {
    start();
    peers::Connection peer = connectionInOnCanAccept(false);
    peer.send("hi\r\n");
    const std::jthread opener([this] {
        port::sleep(200);
        m_gate.open();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    EXPECT_EQ(peer.receiveAll(), ProbeServer::kAnswer);
}

TEST_F(Stopping, TerminatesTheThreadWhenItCannotBeWoken) {
    const int before = countThreadsAtRest();
    start();
    misdirect();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_THAT(m_server.codes, ElementsAre(19));
    EXPECT_EQ(m_server.statuses.at(0), _T("Connection refused."));
    EXPECT_TRUE(eventually([&] { return countThreads() <= before; }));
    EXPECT_FALSE(isReachable());
}

TEST_F(Stopping, LosesNoHandlesWhenTheThreadCannotBeWokenAndMayStartAgain) {
    EXPECT_TRUE(usesUpAtMost(0, [this] {
        start();
        misdirect();
        EXPECT_EQ(m_server.StopAccept(), 0);
    }));
    start();
    EXPECT_TRUE(isReachable());
}

// Winsock has a handle for each thread that waits in it, which is lost with the thread.
TEST_F(Stopping, LosesNoHandlesOfItsOwnByForce) {
    if (!endsThreadsByForce()) GTEST_SKIP() << "no thread is ended by force on this system";
    EXPECT_TRUE(usesUpAtMost(10, [this] {
        start();
        const peers::Connection peer = connectionInOnCanAccept(true);
        misdirect();
        m_server.StopAccept();
    }));
}

TEST_F(Stopping, ClosesTheConnectionWhenOnCanAcceptIsEndedByForce) {
    if (!endsThreadsByForce()) GTEST_SKIP() << "no thread is ended by force on this system";
    const int before = countThreadsAtRest();
    start();
    peers::Connection peer = connectionInOnCanAccept(true);
    misdirect();
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_TRUE(eventually([&] { return countThreads() <= before; }));
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_TRUE(m_server.RunDownIfIdle());
}

TEST_F(Stopping, ConnectsToTheLoopbackAddressOnly) {
    ASSERT_EQ(m_server.ConnectToPort(peers::freePort(), 5, AF_INET, htonl(0x7F000002)), 0);
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

// OnCanAccept holds the destructor of the base until the worker has seen the flag.
TEST_F(Stopping, RaisesTheShutDownFlagInTheDestructor) {
    struct Scene {
        Gate serving;
        Gate& gate;
        std::atomic<bool> isSeen = false;
    };
    struct Worker : CUT_WSThread {
        explicit Worker(Scene& scene) : m_scene(scene) {}
        void OnConnect() override {
            Scene& scene = m_scene;
            scene.serving.open();
            scene.isSeen = eventually([this] { return m_owner->GetShutDownFlag() == 1; },
                                      std::chrono::seconds(20));
            scene.gate.open();
        }
        Scene& m_scene;
    };
    struct Server : CUT_WSServer {
        explicit Server(Scene& scene) : m_scene(scene) {}
        CUT_WSThread* CreateInstance() override { return new Worker(m_scene); }
        void ReleaseInstance(CUT_WSThread* worker) override { delete worker; }
        long OnCanAccept(const char*) override {
            if (++m_asked == 1) return 1;
            m_scene.gate.pass();
            return 0;
        }
        Scene& m_scene;
        int m_asked = 0;
    };
    Scene scene{{}, m_gate};
    auto server = std::make_unique<Server>(scene);
    ASSERT_EQ(server->ConnectToPort(0, 5, AF_INET, htonl(INADDR_LOOPBACK)), 0);
    server->SetPort(server->GetBoundPort());
    ASSERT_EQ(server->StartAccept(), 0);
    peers::Connection served = peers::connectionTo(server->GetPort());
    ASSERT_TRUE(scene.serving.pass());
    const peers::Connection asked = peers::connectionTo(server->GetPort());
    ASSERT_TRUE(m_gate.awaitArrivals());
    server.reset();
    EXPECT_TRUE(scene.isSeen);
    EXPECT_TRUE(served.awaitClose());
}

}  // namespace
