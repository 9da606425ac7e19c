#include <stdexcept>

#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Accepting : public ServerTest {
  protected:
    void SetUp() override { start(); }

    // A connection whose handler is waiting at the gate.
    peers::Connection heldConnection() {
        hold(&ProbeServer::onConnect);
        return connectionAtTheGate();
    }
};

TEST_F(Accepting, CallsItsVirtualFunctionsInOrder) {
    EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer) << "of the base worker";
    EXPECT_THAT(m_log->events(), ElementsAre("OnCanAccept 127.0.0.1", "CreateInstance", "OnConnect",
                                             "ReleaseInstance", "worker deleted"));
    EXPECT_THAT(m_server.codes, ElementsAre(0));
    EXPECT_THAT(m_server.statuses, IsEmpty());
    // The whole life of a worker is on one thread.
    const std::vector<DWORD> threads = m_log->threads();
    EXPECT_NE(threads[0], threads[1]);
    EXPECT_NE(threads[0], port::currentThreadId());
    for (size_t i = 1; i < threads.size(); ++i) EXPECT_EQ(threads[i], threads[1]) << i;
}

TEST_F(Accepting, SetsTheFieldsOfTheWorkerAndItsEntry) {
    const peers::Connection peer = heldConnection();
    const ProbeServer::ThreadListLock lock(m_server);
    const auto* entry = m_server.ThreadListFirst();
    const auto& worker = static_cast<const LoggingWorker&>(*entry->worker);
    EXPECT_EQ(m_server.GetNumConnections(), 1);
    EXPECT_EQ(worker.owner(), &m_server);
    EXPECT_EQ(worker.peerAddress().sin_port, port::localAddress(peer.socket()).sin_port);
    EXPECT_EQ(entry->socket, worker.socket());
    EXPECT_NE(worker.listenSocket(), worker.socket());
    EXPECT_NE(worker.listenSocket(), 0u);
    EXPECT_EQ(entry->threadId, m_log->threads().back());
    EXPECT_EQ(worker.receiveTimeOut(), 30000);
    EXPECT_EQ(worker.sendTimeOut(), 30000);
    EXPECT_EQ(peers::optionOf(worker.socket(), SO_RCVTIMEO), 30000);
    EXPECT_EQ(peers::optionOf(worker.socket(), SO_SNDTIMEO), 30000);
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
    ASSERT_TRUE(m_server.onRelease.awaitCalls(1));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(length, 0);
    EXPECT_TRUE(isOpen);
}

TEST_F(Accepting, RefusesConnectionsAboveItsMaximumWithoutAMessage) {
    m_server.SetMaxConnections(1);
    const peers::Connection first = heldConnection();
    EXPECT_EQ(m_server.converse("let me in"), "");
    EXPECT_EQ(m_log->count("OnMaxConnect"), 1);
    EXPECT_EQ(m_log->count("OnConnect"), 1);
    EXPECT_EQ(m_log->count("ReleaseInstance"), 1);
    EXPECT_EQ(m_server.GetNumConnections(), 1);
    peers::Connection another = m_server.connection();
    ASSERT_TRUE(m_log->await("OnMaxConnect", 2));
    EXPECT_EQ(m_server.GetNumConnections(), 2) << "while it lasts";
    another.close();
    EXPECT_TRUE(eventually([&] { return m_server.GetNumConnections() == 1; }));
}

TEST_F(Accepting, ClosesTheConnectionOfARefusedPeer) {
    m_server.verdict = 0;
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_THAT(m_log->events(), ElementsAre("OnCanAccept 127.0.0.1"));
    m_server.verdict = -1;
    EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer);
}

TEST_F(Accepting, ClosesWhenThereIsNoWorker) {
    m_server.hasWorkers = false;
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_THAT(m_log->events(), ElementsAre("OnCanAccept 127.0.0.1", "CreateInstance"));
    EXPECT_EQ(m_server.GetNumConnections(), 0);
}

TEST_F(Accepting, SurvivesAThrowingOnCanAcceptAndAThrowingFactory) {
    for (Hook<>* hook : {&m_server.onCanAccept, &m_server.onCreate}) {
        *hook = [] { throw std::runtime_error("from a hook"); };
        EXPECT_EQ(m_server.connection().receiveAll(), "");
        *hook = [] {};
        EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer);
    }
}

TEST_F(Accepting, ReleasesAWorkerWhoseHandlerThrows) {
    m_server.onConnect = [](LoggingWorker&) { throw 5; };
    EXPECT_EQ(m_server.connection().receiveAll(), "");
    EXPECT_EQ(m_log->count("ReleaseInstance"), 1);
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

// A connection is shut down before it is closed: its peer sees the end although another handle of
// the server's socket stays open.
class ServerShutdown : public Accepting {
  protected:
    NySe::UniqueSocket m_other;  // closed after the peer has seen the end
};

TEST_F(ServerShutdown, EndsARefusedConnection) {
    int port = 0;
    m_server.verdict = 0;
    m_server.onCanAccept = [&] {
        m_gate.pass();
        m_other = otherHandleOf(socketConnectedTo(port));
        EXPECT_TRUE(m_other);
    };
    NySe::UniqueSocket socket = peers::connectTo(m_server.GetPort());
    port = peers::portOf(socket);
    m_gate.open();
    peers::Connection peer(std::move(socket), peers::kNeverStopping);
    EXPECT_TRUE(peer.awaitClose());
}

TEST_F(ServerShutdown, EndsAConnectionWhoseHandlerHasReturned) {
    m_server.onConnect = [this](LoggingWorker& worker) {
        m_other = otherHandleOf(worker.socket());
        EXPECT_TRUE(m_other);
    };
    peers::Connection peer = m_server.connection();
    EXPECT_TRUE(peer.awaitClose());
}

}  // namespace
