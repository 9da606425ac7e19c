// A thousand connections at once.
#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

constexpr int kCrowd = 1000;
constexpr std::chrono::seconds kGenerously{60};  // on a crowded machine

// Answers what comes until the peer goes.
void echo(LoggingWorker& worker) {
    worker.SetReceiveTimeOut(120'000);  // a peer may have to wait until all the others are there
    char buffer[16];
    for (int count; (count = worker.Receive(buffer, sizeof buffer, 0)) > 0;)
        worker.Send(buffer, count, 0);
}

class ServerCrowd : public ServerTest {
  protected:
    void SetUp() override {
        m_peers.reserve(kCrowd);
        m_server.onConnect = echo;
        m_server.ending = ProbeServer::Ending::RunsDown;
        ASSERT_EQ(m_server.listen(kCrowd), UTE_SUCCESS);
        ASSERT_EQ(m_server.StartAccept(), UTE_SUCCESS);
    }

    void connect(int count) {
        for (int i = 0; i < count; ++i) m_peers.push_back(m_server.connection());
    }
    bool awaitWorkers(int count) {
        return eventually([&] { return m_server.GetNumConnections() == count; }, kGenerously);
    }
    bool awaitDeleted(int count) {
        return eventually([&] { return m_log->count("worker deleted") == count; }, kGenerously);
    }
    void sendToAll(std::string_view bytes) {
        for (auto& peer : m_peers) peer.send(bytes);
    }
    int countAnswered(std::string_view bytes) {
        int answered = 0;
        for (auto& peer : m_peers) answered += peer.receive() == bytes;
        return answered;
    }

    const int m_threads = countThreadsAtRest();
    std::vector<peers::Connection> m_peers;
};

TEST_F(ServerCrowd, IsServedAtOnceAndLeaksNothing) {
    connect(kCrowd);
    EXPECT_TRUE(awaitWorkers(kCrowd));
    sendToAll("hello");
    EXPECT_EQ(countAnswered("hello"), kCrowd);
    m_peers.clear();
    EXPECT_TRUE(awaitWorkers(0));
    EXPECT_TRUE(awaitDeleted(kCrowd));
    destroy();
    EXPECT_TRUE(eventually([&] { return countThreads() <= m_threads; }, kGenerously));
}

TEST_F(ServerCrowd, OutlivesItsServerAndLeaksNothing) {
    connect(kCrowd);
    ASSERT_TRUE(awaitWorkers(kCrowd));
    destroy();
    sendToAll("hello");
    EXPECT_EQ(countAnswered("hello"), kCrowd);
    m_peers.clear();
    EXPECT_TRUE(awaitDeleted(kCrowd));
    EXPECT_TRUE(eventually([&] { return countThreads() <= m_threads; }, kGenerously));
}

}  // namespace
