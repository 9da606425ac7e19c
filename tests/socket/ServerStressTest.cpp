// Servers are started, flooded with connections and destroyed, over and over. Each lives in pages
// of its own, which nobody may touch once it is destroyed: a thread that did so would end the
// program.

#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <random>
#include <thread>

#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/CUT_WSThread.h"
#include "NyServer/socket/SocketCodes.h"
#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"
#include "tests/support/Guarded.h"
#include "tests/support/Handles.h"
#include "tests/support/Threads.h"

namespace {

constexpr int kServers = 250;
constexpr int kUnwakeableServers = 50;
constexpr int kPeers = 4;
constexpr unsigned kSeed = 20240229;

struct Counts {
    std::atomic<int> asked = 0;
    std::atomic<int> made = 0;
    std::atomic<int> released = 0;
    std::atomic<int> deleted = 0;
};

// Answers what comes until the peer goes; watches its server when that waits for it.
class StressWorker : public CUT_WSThread {
  public:
    StressWorker(Counts& counts, bool isWatching) : m_counts(counts), m_isWatching(isWatching) {}
    ~StressWorker() override { ++m_counts.deleted; }

    void OnConnect() override {
        char buffer[64];
        while (!m_isWatching || m_owner->GetShutDownFlag() == 0) {
            if (WaitForReceive(0, 10000) != UTE_SUCCESS) continue;
            const int count = Receive(buffer, sizeof buffer, 0);
            if (count <= 0 || Send(buffer, count, 0) <= 0) return;
        }
    }

  private:
    Counts& m_counts;
    bool m_isWatching;
};

class StressServer : public CUT_WSServer {
  public:
    StressServer(Counts& counts, bool waitsForWorkers)
        : m_counts(counts), m_waitsForWorkers(waitsForWorkers) {}
    ~StressServer() override {
        if (!m_waitsForWorkers) CloseDoor();
        if (m_waitsForWorkers) {
            SetShutDownFlag(1);
            while (!CloseDoorIfIdle()) ::Sleep(1);
        }
        m_isWhole = false;
    }

    bool start() {
        int result = UTE_SOCK_BIND_FAILED;
        for (int attempt = 0; result == UTE_SOCK_BIND_FAILED && attempt < 50; ++attempt)
            result = ConnectToPort(peers::freePort(), 5, AF_INET, ::htonl(INADDR_LOOPBACK));
        return result == UTE_SUCCESS && StartAccept() == UTE_SUCCESS;
    }

  protected:
    CUT_WSThread* CreateInstance() override {
        EXPECT_TRUE(m_isWhole);
        ++m_counts.made;
        return new StressWorker(m_counts, m_waitsForWorkers);
    }
    void ReleaseInstance(CUT_WSThread* worker) override {
        EXPECT_TRUE(m_isWhole);
        delete worker;
        ++m_counts.released;
    }
    long OnCanAccept(const char*) override {
        EXPECT_TRUE(m_isWhole);
        return ++m_counts.asked % 7 == 0 ? 0 : 1;
    }

  private:
    Counts& m_counts;
    bool m_waitsForWorkers;
    std::atomic<bool> m_isWhole = true;
};

// Connects to whichever server there is, in every rude way.
class Flood {
  public:
    explicit Flood(unsigned seed) : m_random(seed), m_thread([this] { run(); }) {}
    ~Flood() {
        m_isEnding = true;
        m_thread.join();
    }
    Flood(const Flood&) = delete;
    Flood& operator=(const Flood&) = delete;

    static inline std::atomic<unsigned int> port = 0;

  private:
    void run() {
        while (!m_isEnding) {
            UniqueSocket socket = port ? peers::connectTo(port) : UniqueSocket();
            if (!socket) {
                ::Sleep(1);
                continue;
            }
            behave({std::move(socket), m_isEnding}, std::uniform_int_distribution(0, 39)(m_random));
        }
    }
    static void behave(peers::Connection peer, int manner) {
        if (manner == 0) return;  // vanishes at once
        peer.send("some words");
        if (manner < 10) return;          // vanishes after sending
        if (manner < 20) peer.receive();  // waits for the answer
        if (manner % 3 == 0) ::Sleep(5);  // is slow to leave
        if (manner % 3 == 1) peer.finishSending();
    }

    std::mt19937 m_random;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

class ServerStress : public testing::Test {
  protected:
    ServerStress() { std::cout << "seed " << kSeed << std::endl; }

    // For a while only, since a failing accept ends the accepting thread.
    void awaitWorkers(int count) {
        for (int tick = 0; tick < 100 && m_counts.made < count; ++tick) ::Sleep(1);
    }

    // One server from its start to its end. Every third does not wait for its workers, every second
    // is stopped before it is destroyed.
    void runServer(int number, bool isWakeable) {
        Guarded<StressServer> guarded(m_counts, number % 3 != 0);
        ASSERT_TRUE(guarded->start());
        Flood::port = guarded->GetPort();
        awaitWorkers(m_counts.made + static_cast<int>(m_random() % 20));
        if (!isWakeable) guarded->SetPort(m_nobody.port());
        if (number % 2 == 0) guarded->StopAccept();
        guarded.destroy();
        // Threads that have not yet noticed get a chance to touch what they must not.
        ::Sleep(m_random() % 3);
    }

    void runServers(int count, bool areWakeable) {
        std::vector<std::unique_ptr<Flood>> floods;
        for (unsigned i = 0; i < kPeers; ++i) floods.push_back(std::make_unique<Flood>(kSeed + i));
        for (int i = 0; i < count && !HasFailure(); ++i) runServer(i, areWakeable);
        Flood::port = 0;
    }

    // A few handles are for what the system itself keeps.
    void expectNothingLeft() {
        EXPECT_TRUE(eventually([&] { return m_counts.deleted == m_counts.made; }));
        EXPECT_TRUE(eventually([&] { return countThreads() <= m_threadsBefore; }));
        EXPECT_TRUE(eventually([&] { return handleLevel() <= m_handlesBefore + 4; }));
        std::cout << m_counts.asked << " asked, " << m_counts.made << " made, " << m_counts.released
                  << " released; handles " << m_handlesBefore << " to " << handleLevel()
                  << ", threads " << m_threadsBefore << " to " << countThreads() << std::endl;
    }

    // What the system keeps from the first use does not count.
    void SetUp() override {
        runServers(10, true);
        ASSERT_TRUE(eventually([&] { return m_counts.deleted == m_counts.made; }));
        ::Sleep(100);
        m_threadsBefore = countThreadsAtRest();
        m_handlesBefore = handleLevel();
    }

    peers::WinsockSession m_winsock;
    peers::RefusingPort m_nobody;
    Counts m_counts;
    std::mt19937 m_random{kSeed};
    int m_threadsBefore = 0;
    size_t m_handlesBefore = 0;
};

TEST_F(ServerStress, LeavesNothingBehindWhateverItsPeersDo) {
    runServers(kServers, true);
    expectNothingLeft();
    EXPECT_GT(m_counts.released, kServers);
    EXPECT_LT(m_counts.released, m_counts.made);
}

TEST_F(ServerStress, LeavesNothingBehindWhenItsAcceptingThreadCannotBeWoken) {
    runServers(kUnwakeableServers, false);
    expectNothingLeft();
}

}  // namespace
