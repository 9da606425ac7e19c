// Faults of an accepting thread that only the stand-ins can provoke: descriptors and threads that
// run out, and a thread that outlives a stop because nobody can end it by force.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/socket/ProbeServer.h"
#include "tests/support/Threads.h"

namespace {

// No descriptor is to be had while it lives.
class NoDescriptors {
  public:
    NoDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const int next = ::open("/dev/null", O_RDONLY);
        ::close(next);
        EXPECT_GE(next, 0);
        const rlimit none{static_cast<rlim_t>(next), m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

  private:
    rlimit m_before{};
};

// No handle is to be had while it lives, and so no thread.
class NoHandles {
  public:
    NoHandles() {
        while (HANDLE event = ::CreateEventW(nullptr, TRUE, FALSE, nullptr))
            m_taken.emplace_back(event);
    }

  private:
    std::vector<NySe::UniqueKernelHandle> m_taken;
};

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

class AcceptFaults : public testing::Test {
  protected:
    void SetUp() override {
        m_before = countThreadsAtRest();
        ASSERT_TRUE(m_server.start());
        // The sanitizers, too, use descriptors for what they see for the first time.
        ASSERT_EQ(converse(m_server.connection()), kAnswer);
        ASSERT_TRUE(eventually([this] { return countThreads() <= m_before + 1; }));
    }
    void TearDown() override { m_gate.open(); }

    std::string converse(peers::Connection peer) {
        peer.send("hi\r\n");
        return peer.receiveAll();
    }
    // Connects a socket that was made before.
    void connect(const NySe::UniqueSocket& socket) {
        const sockaddr_in address = peers::loopbackAddress(m_server.GetPort());
        ASSERT_EQ(::connect(static_cast<int>(socket.get()),
                            reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }

    static constexpr const char* kAnswer = "Connect Successful ... Now Disconnecting.";

    peers::WinsockSession m_winsock;
    Gate m_gate;
    peers::RefusingPort m_nobody;
    ProbeServer m_server;
    int m_before = 0;
};

// The accept that waits has its descriptor already: only the one for the second peer has none.
TEST_F(AcceptFaults, AShortageOfDescriptorsIsWaitedForWithoutABusyLoop) {
    NySe::UniqueSocket sockets[] = {NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0)),
                                    NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0))};
    {
        const NoDescriptors none;
        for (const NySe::UniqueSocket& socket : sockets) connect(socket);
        ASSERT_TRUE(m_server.log->await("OnCanAccept 127.0.0.1", 2)) << "that of SetUp, and one";
        const double before = processorSeconds();
        ::Sleep(1000);
        EXPECT_LT(processorSeconds() - before, 0.2);
        EXPECT_EQ(m_server.log->count("OnCanAccept 127.0.0.1"), 2);
    }
    for (NySe::UniqueSocket& socket : sockets)
        EXPECT_EQ(converse({std::move(socket), peers::kNeverStopping}), kAnswer);
    EXPECT_EQ(converse(m_server.connection()), kAnswer);
}

TEST_F(AcceptFaults, AShortageOfDescriptorsDoesNotDelayAStop) {
    NySe::UniqueSocket sockets[] = {NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0)),
                                    NySe::UniqueSocket(::socket(AF_INET, SOCK_STREAM, 0))};
    {
        const NoDescriptors none;
        for (const NySe::UniqueSocket& socket : sockets) connect(socket);
        ::Sleep(200);
        const ULONGLONG start = ::GetTickCount64();
        EXPECT_EQ(m_server.StopAccept(), 0);
        EXPECT_LT(::GetTickCount64() - start, 20000u);
    }
    for (NySe::UniqueSocket& socket : sockets) socket.reset();
    EXPECT_TRUE(eventually([this] { return countThreads() <= m_before; }));
}

// Another descriptor of the connection would keep it open past the close alone.
TEST_F(AcceptFaults, AConnectionWithoutAThreadIsShutDown) {
    std::unique_ptr<NoHandles> none;
    std::vector<NySe::UniqueSocket> others;
    m_server.onCanAccept = [&] {
        for (int fd = 3; fd < 256; ++fd) {
            sockaddr_in own{};
            socklen_t length = sizeof own;
            if (::getpeername(fd, reinterpret_cast<sockaddr*>(&own), &length) == 0)
                others.emplace_back(static_cast<SOCKET>(::dup(fd)));
        }
        none = std::make_unique<NoHandles>();
    };
    peers::Connection peer = m_server.connection();
    EXPECT_TRUE(peer.awaitClose());
    EXPECT_EQ(m_server.log->count("CreateInstance"), 1) << "that of SetUp";
    none.reset();
    m_server.onCanAccept = [] {};
    EXPECT_EQ(converse(m_server.connection()), kAnswer);
}

// OnCanAccept holds the thread over the stop and over the next start.
TEST_F(AcceptFaults, AThreadThatOutlivesItsStopTakesNoPartInTheNextRun) {
    m_server.onCanAccept = [this] { m_gate.pass(); };
    peers::Connection stale = m_server.connection();
    ASSERT_TRUE(m_gate.awaitArrivals());
    m_server.SetPort(m_nobody.port());
    EXPECT_EQ(m_server.StopAccept(), 0);
    ASSERT_TRUE(m_server.start());
    m_gate.open();
    EXPECT_TRUE(stale.awaitClose());
    EXPECT_EQ(m_server.log->count("OnConnect"), 1) << "that of SetUp";
    EXPECT_TRUE(eventually([this] { return countThreads() <= m_before + 1; }));
    EXPECT_EQ(converse(m_server.connection()), kAnswer);
    EXPECT_EQ(m_server.StartAccept(), 1) << "the next run is still the one that accepts";
    EXPECT_EQ(m_server.StopAccept(), 0);
    EXPECT_TRUE(eventually([this] { return countThreads() <= m_before; }));
}

}  // namespace
