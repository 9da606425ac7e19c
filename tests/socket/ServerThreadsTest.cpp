// What a server's own thread, its workers' threads and its peers do to it at the same time.
#include "tests/socket/ProbeServer.h"

namespace {

class ServerThreads : public ServerTest {
  protected:
    void start(LoggingWorker::Handler handler) {
        m_server.onConnect = std::move(handler);
        ServerTest::start();
    }

    std::atomic<int> m_looks = 0;
    std::atomic<int> m_wrongLooks = 0;
};

TEST_F(ServerThreads, ShowsItsWorkersWholeSettingsWhileTheyChange) {
    start([this](LoggingWorker& worker) {
        const CUT_WSServer& server = *worker.owner();
        for (; server.GetShutDownFlag() == 0; ++m_looks) {
            const bool isRight = server.GetMaxConnections() >= 30000 && server.GetProtocol() <= 1 &&
                                 server.GetPort() > 0 && server.GetBoundPort() > 0 &&
                                 server.GetNumConnections() > 0;
            if (!isRight) ++m_wrongLooks;
        }
    });
    const unsigned int port = m_server.GetPort();
    const peers::Connection peers[] = {m_server.connection(), m_server.connection()};
    const auto change = [&, round = 0]() mutable {
        ++round;
        m_server.SetPort(port + round % 2);
        m_server.SetMaxConnections(30000 + round % 2);
        m_server.SetProtocol(round % 2);
        return m_looks >= 500 && round >= 500;
    };
    EXPECT_TRUE(eventually(change, peers::kTimeOut));
    m_server.SetPort(port);
    EXPECT_EQ(m_wrongLooks, 0);
}

TEST_F(ServerThreads, KillsWorkersWhileOthersStart) {
    constexpr int kSenders = 3;
    constexpr int kEach = 10;
    start([](LoggingWorker& worker) {
        while (worker.abortFlag() == 0) port::sleep(1);
    });
    std::vector<std::thread> senders;
    for (int i = 0; i < kSenders; ++i)
        senders.emplace_back([this] {
            for (int n = 0; n < kEach; ++n) EXPECT_TRUE(m_server.connection().awaitClose());
        });
    const auto kill = [&] {
        m_server.ThreadListKill();
        return m_log->count("worker deleted") == kSenders * kEach;
    };
    EXPECT_TRUE(eventually(kill, std::chrono::seconds(120)));
    for (auto& sender : senders) sender.join();
    EXPECT_EQ(m_server.GetNumConnections(), 0);
    EXPECT_EQ(m_log->count("ReleaseInstance"), kSenders * kEach);
}

using ServerResets = ServerTest;

// The accepting thread is held until all of its peers have reset.
TEST_F(ServerResets, DoNotEndTheAccepting) {
    constexpr int kResets = 1000;
    hold(&ProbeServer::onCanAccept);
    ASSERT_EQ(m_server.listen(kResets + 1), UTE_SUCCESS);
    ASSERT_EQ(m_server.StartAccept(), UTE_SUCCESS);
    const peers::Connection held = connectionAtTheGate();
    const linger noTime{1, 0};  // the close is a reset
    for (int i = 0; i < kResets; ++i) {
        const peers::Connection peer = m_server.connection();
        ASSERT_EQ(::setsockopt(peer.socket(), SOL_SOCKET, SO_LINGER,
                               reinterpret_cast<const char*>(&noTime), sizeof noTime),
                  0);
    }
    m_gate.open();
    EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer);
}

}  // namespace
