// Servers are started, flooded with connections and destroyed, over and over. Each lives in pages
// of its own, which nobody may touch once it is destroyed: a thread that did so would end the
// program.
#include <random>

#include "tests/socket/ProbeServer.h"
#include "tests/support/Guarded.h"
#include "tests/support/System.h"

namespace {

constexpr int kServers = 250;
constexpr int kUnwakeableServers = 50;
constexpr int kPeers = 4;
constexpr unsigned kSeed = 20240229;

// Answers what comes until the peer goes, or until the shut-down flag when its server waits for it.
void echo(LoggingWorker& worker, bool isWatching) {
    char buffer[64];
    while (!isWatching || worker.owner()->GetShutDownFlag() == 0) {
        if (worker.WaitForReceive(0, 10000) != UTE_SUCCESS) continue;
        const int count = worker.Receive(buffer, sizeof buffer, 0);
        if (count <= 0 || worker.Send(buffer, count, 0) <= 0) return;
    }
}

// Connects to whichever server there is, in every rude way.
class Flood {
  public:
    explicit Flood(unsigned seed) : m_random(seed), m_thread([this] { run(); }) {}
    ~Flood() {
        m_isEnding = true;
        m_thread.join();
    }

    static inline std::atomic<unsigned int> port = 0;

  private:
    void run() {
        while (!m_isEnding) {
            NySe::UniqueSocket socket = port ? peers::connectTo(port) : NySe::UniqueSocket();
            if (!socket) {
                port::sleep(1);
                continue;
            }
            behave({std::move(socket), m_isEnding}, std::uniform_int_distribution(0, 39)(m_random));
        }
    }
    static void behave(peers::Connection peer, int manner) {
        if (manner == 0) return;  // vanishes at once
        peer.send("some words");
        if (manner < 10) return;              // vanishes after sending
        if (manner < 20) peer.receive();      // waits for the answer
        if (manner % 3 == 0) port::sleep(5);  // is slow to leave
        if (manner % 3 == 1) peer.finishSending();
    }

    std::mt19937 m_random;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

class ServerStress : public testing::Test {
  protected:
    // One server's hooks: every seventh peer may not enter.
    void script(ProbeServer& server, bool waitsForWorkers) {
        server.log = m_log;
        server.ending =
            waitsForWorkers ? ProbeServer::Ending::WaitsForWorkers : ProbeServer::Ending::RunsDown;
        server.onConnect = [=](LoggingWorker& worker) { echo(worker, waitsForWorkers); };
        server.onCanAccept = [&server, asked = 0]() mutable {
            server.verdict = ++asked % 7 == 0 ? 0 : 1;
        };
    }
    int made() const { return m_log->count("CreateInstance"); }
    int released() const { return m_log->count("ReleaseInstance"); }
    bool areDeleted() const {
        return eventually([&] { return m_log->count("worker deleted") == made(); });
    }
    // For a while only, since a failing accept ends the accepting thread.
    void awaitWorkers(int count) {
        for (int tick = 0; tick < 100 && made() < count; ++tick) port::sleep(1);
    }

    // One server from its start to its end. Every third does not wait for its workers, every second
    // is stopped before it is destroyed.
    void runServer(int number, bool isWakeable) {
        Guarded<ProbeServer> guarded;
        script(*guarded, number % 3 != 0);
        ASSERT_TRUE(guarded->start());
        Flood::port = guarded->GetPort();
        awaitWorkers(made() + static_cast<int>(m_random() % 20));
        if (!isWakeable) guarded->SetPort(m_nobody.port());
        if (number % 2 == 0) guarded->StopAccept();
        guarded.destroy();
        // Threads that have not yet noticed get a chance to touch what they must not.
        port::sleep(m_random() % 3);
    }

    void runServers(int count, bool areWakeable) {
        std::vector<std::unique_ptr<Flood>> floods;
        for (unsigned i = 0; i < kPeers; ++i) floods.push_back(std::make_unique<Flood>(kSeed + i));
        for (int i = 0; i < count && !HasFailure(); ++i) runServer(i, areWakeable);
        Flood::port = 0;
    }

    // A few handles are for what the system itself keeps.
    void expectNothingLeft() {
        EXPECT_TRUE(areDeleted());
        EXPECT_TRUE(eventually([&] { return countThreads() <= m_threadsBefore; }));
        EXPECT_TRUE(eventually([&] { return handleLevel() <= m_handlesBefore + 4; }));
    }

    // What the system keeps from the first use does not count.
    void SetUp() override {
        runServers(10, true);
        ASSERT_TRUE(areDeleted());
        port::sleep(100);
        m_threadsBefore = countThreadsAtRest();
        m_handlesBefore = handleLevel();
    }

    peers::WinsockSession m_winsock;
    peers::RefusingPort m_nobody;
    std::shared_ptr<ServerLog> m_log = std::make_shared<ServerLog>();
    std::mt19937 m_random{kSeed};
    int m_threadsBefore = 0;
    size_t m_handlesBefore = 0;
};

TEST_F(ServerStress, LeaksNothingWhateverItsPeersDo) {
    runServers(kServers, true);
    expectNothingLeft();
    EXPECT_GT(released(), kServers);
    EXPECT_LT(released(), made());
}

TEST_F(ServerStress, LeaksNothingWhenItsAcceptThreadCannotBeWoken) {
    runServers(kUnwakeableServers, false);
    expectNothingLeft();
}

}  // namespace
