#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/socket/ProbeServer.h"
#include "tests/support/Threads.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Accepting : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_server.start()); }
    // The server is gone before what its handlers refer to.
    void TearDown() override {
        m_gate.open();
        m_owned.reset();
    }

    // A connection whose handler is waiting at the gate.
    peers::Connection heldConnection() {
        m_server.onConnect = [this](LoggingWorker&) { m_gate.pass(); };
        peers::Connection peer = m_server.connection();
        EXPECT_TRUE(m_gate.awaitArrivals());
        return peer;
    }
    // One connection from its beginning to the close.
    std::string converse(std::string_view words) {
        peers::Connection peer = m_server.connection();
        peer.send(words);
        return peer.receiveAll();
    }
    std::vector<std::string> eventsOfOneConnection() {
        converse("hello\r\n");
        return m_server.log->events();
    }

    peers::WinsockSession m_winsock;
    Gate m_gate;
    std::unique_ptr<ProbeServer> m_owned = std::make_unique<ProbeServer>();
    ProbeServer& m_server = *m_owned;
};

TEST_F(Accepting, CallsItsVirtualFunctionsInOrder) {
    EXPECT_THAT(eventsOfOneConnection(),
                ElementsAre("OnCanAccept 127.0.0.1", "CreateInstance", "OnConnect",
                            "ReleaseInstance", "worker deleted"));
    EXPECT_THAT(m_server.codes, ElementsAre(0));
    EXPECT_THAT(m_server.statuses, IsEmpty());
}

TEST_F(Accepting, RunsTheWholeLifeOfAWorkerOnOneThread) {
    eventsOfOneConnection();
    const std::vector<DWORD> threads = m_server.log->threads();
    EXPECT_NE(threads[0], threads[1]);
    EXPECT_NE(threads[0], ::GetCurrentThreadId());
    for (size_t i = 1; i < threads.size(); ++i) EXPECT_EQ(threads[i], threads[1]) << i;
}

TEST_F(Accepting, AnswersALineWithTheBaseWorker) {
    EXPECT_EQ(converse("hi\r\n"), "Connect Successful ... Now Disconnecting.");
}

TEST_F(Accepting, ClosesOnAPeerThatSendsNothing) {
    peers::Connection peer = m_server.connection();
    peer.finishSending();
    EXPECT_EQ(peer.receiveAll(), "");
}

TEST_F(Accepting, IntroducesTheWorkerToItsConnection) {
    struct {
        CUT_WSServer* owner;
        DWORD port;
        SOCKET socket, listener, listed;
        DWORD thread, own;
        long receive, send;
        int receiveOption, sendOption, count;
    } seen{};
    m_server.onConnect = [&](LoggingWorker& worker) {
        const ProbeServer::ThreadListLock lock(m_server);
        const auto* entry = m_server.ThreadListFirst();
        seen = {worker.owner(),
                ::ntohs(worker.peerAddress().sin_port),
                worker.socket(),
                worker.listenSocket(),
                entry->socket,
                entry->threadId,
                ::GetCurrentThreadId(),
                worker.receiveTimeOut(),
                worker.sendTimeOut(),
                0,
                0,
                m_server.GetNumConnections()};
        int length = sizeof(int);
        ::getsockopt(worker.socket(), SOL_SOCKET, SO_RCVTIMEO,
                     reinterpret_cast<char*>(&seen.receiveOption), &length);
        ::getsockopt(worker.socket(), SOL_SOCKET, SO_SNDTIMEO,
                     reinterpret_cast<char*>(&seen.sendOption), &length);
    };
    UniqueSocket socket = peers::connectTo(m_server.GetPort());
    const int port = peers::portOf(socket);
    peers::Connection(std::move(socket), peers::kNeverStopping).receiveAll();

    EXPECT_EQ(seen.owner, &m_server);
    EXPECT_EQ(seen.port, static_cast<DWORD>(port));
    EXPECT_EQ(seen.listed, seen.socket);
    EXPECT_NE(seen.listener, seen.socket);
    EXPECT_NE(seen.listener, 0u);
    EXPECT_EQ(seen.thread, seen.own);
    EXPECT_EQ(seen.receive, 30000);
    EXPECT_EQ(seen.send, 30000);
    EXPECT_EQ(seen.receiveOption, 30000);
    EXPECT_EQ(seen.sendOption, 30000);
    EXPECT_EQ(seen.count, 1);
}

TEST_F(Accepting, ReleasesAWorkerThatIsOutOfTheListWithItsSocketOpen) {
    int count = -1;
    int length = -1;
    bool isOpen = false;
    m_server.onConnect = [](LoggingWorker&) {};
    m_server.onRelease = [&](CUT_WSThread* worker) {
        count = m_server.GetNumConnections();
        length = m_server.ThreadListGetLength();
        isOpen = worker->IsConnected() == 1;
    };
    m_server.connection().receiveAll();
    EXPECT_EQ(count, 0);
    EXPECT_EQ(length, 0);
    EXPECT_TRUE(isOpen);
}

TEST_F(Accepting, CountsItsLiveWorkers) {
    peers::Connection first = heldConnection();
    peers::Connection second = m_server.connection();
    ASSERT_TRUE(m_gate.awaitArrivals(2));
    EXPECT_EQ(m_server.GetNumConnections(), 2);
    EXPECT_EQ(m_server.ThreadListGetLength(), 2);
    m_gate.open();
    EXPECT_EQ(first.receiveAll() + second.receiveAll(), "");
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(Accepting, RefusesConnectionsAboveItsMaximumWithoutAWord) {
    m_server.SetMaxConnections(1);
    const peers::Connection first = heldConnection();
    EXPECT_EQ(converse("let me in"), "");
    EXPECT_EQ(m_server.log->count("OnMaxConnect"), 1);
    EXPECT_EQ(m_server.log->count("OnConnect"), 1);
    EXPECT_EQ(m_server.log->count("ReleaseInstance"), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 1);
}

TEST_F(Accepting, CountsARefusedConnectionWhileItLasts) {
    m_server.SetMaxConnections(1);
    const peers::Connection first = heldConnection();
    peers::Connection second = m_server.connection();
    ASSERT_TRUE(m_server.log->await("OnMaxConnect"));
    EXPECT_EQ(m_server.GetNumConnections(), 2);
    second.close();
    EXPECT_TRUE(eventually([&] { return m_server.GetNumConnections() == 1; }));
}

TEST_F(Accepting, ClosesOnAPeerThatMayNotEnter) {
    m_server.verdict = 0;
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_THAT(m_server.log->events(), ElementsAre("OnCanAccept 127.0.0.1"));
    m_server.verdict = -1;
    EXPECT_NE(converse("hi\r\n"), "");
}

TEST_F(Accepting, ClosesWhenThereIsNoWorker) {
    m_server.hasWorkers = false;
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_THAT(m_server.log->events(), ElementsAre("OnCanAccept 127.0.0.1", "CreateInstance"));
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(Accepting, SurvivesAThrowingOnCanAccept) {
    m_server.onCanAccept = [] { throw std::runtime_error("OnCanAccept"); };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    m_server.onCanAccept = [] {};
    EXPECT_NE(converse("hi\r\n"), "");
}

TEST_F(Accepting, SurvivesAThrowingFactory) {
    m_server.onCreate = [] { throw std::runtime_error("factory"); };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    m_server.onCreate = [] {};
    EXPECT_NE(converse("hi\r\n"), "");
}

TEST_F(Accepting, ReleasesAWorkerWhoseHandlerThrows) {
    m_server.onConnect = [](LoggingWorker&) { throw 5; };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_EQ(m_server.log->count("ReleaseInstance"), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(Accepting, ClosesWhenTheReleaseThrows) {
    m_server.onConnect = [](LoggingWorker&) {};
    m_server.onRelease = [](CUT_WSThread* worker) {
        delete worker;
        throw std::runtime_error("release");
    };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
}

TEST_F(Accepting, ReleasesKilledWorkersOnceTheirHandlersReturn) {
    peers::Connection peer = heldConnection();
    EXPECT_EQ(m_server.ThreadListKill(), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    EXPECT_EQ(m_server.log->count("ReleaseInstance"), 0);
    m_gate.open();
    EXPECT_EQ(peer.receiveAll(), "");
    EXPECT_EQ(m_server.log->count("ReleaseInstance"), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(Accepting, LetsHandlersWatchTheShutDownFlag) {
    m_server.onConnect = [](LoggingWorker& worker) {
        EXPECT_TRUE(eventually([&] { return worker.owner()->GetShutDownFlag() == 1; }));
    };
    peers::Connection peer = m_server.connection();
    ASSERT_TRUE(m_server.log->await("OnConnect"));
    m_server.SetShutDownFlag(1);
    EXPECT_EQ(peer.receiveAll(), "");
}

TEST_F(Accepting, LeavesNoThreadBehindAConnection) {
    const int before = countThreadsAtRest();
    for (int i = 0; i < 10; ++i) converse("hi\r\n");
    EXPECT_TRUE(eventually([&] { return countThreads() <= before; }));
}

}  // namespace
