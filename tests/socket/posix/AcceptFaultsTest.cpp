// Faults of an accepting thread that a test can provoke on POSIX systems alone: descriptors and
// threads that run out, and a thread that outlives a stop because nobody can end it by force.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <thread>

#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

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

// No thread can be created while it lives: none has so large a stack.
class NoThreads {
  public:
    NoThreads() {
        ::pthread_getattr_default_np(&m_before);
        pthread_attr_t huge = m_before;
        ::pthread_attr_setstacksize(&huge, std::size_t{1} << 48);
        EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
    }
    ~NoThreads() { ::pthread_setattr_default_np(&m_before); }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t m_before{};
};

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// The thread that receives SIGPROF, which is no thread of the test's, stays in the call that it is
// in until `release`.
class HeldThread {
  public:
    HeldThread() {
        s_isHeld = false;
        EXPECT_EQ(::pipe(s_pipe), 0);
        struct sigaction action {};
        action.sa_handler = [](int) {
            s_isHeld = true;
            char byte = 0;
            EXPECT_EQ(::read(s_pipe[0], &byte, 1), 1);
        };
        action.sa_flags = SA_RESTART;
        ::sigaction(SIGPROF, &action, &m_action);
        sigset_t blocked;
        ::sigemptyset(&blocked);
        ::sigaddset(&blocked, SIGPROF);
        ::pthread_sigmask(SIG_BLOCK, &blocked, &m_mask);
        ::kill(::getpid(), SIGPROF);
        EXPECT_TRUE(eventually([] { return s_isHeld.load(); }));
    }
    // REQUIRES: after release.
    ~HeldThread() {
        ::sigaction(SIGPROF, &m_action, nullptr);
        ::pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);
        for (const int end : s_pipe) ::close(end);
    }
    HeldThread(const HeldThread&) = delete;
    HeldThread& operator=(const HeldThread&) = delete;

    void release() const { EXPECT_EQ(::write(s_pipe[1], "", 1), 1); }

  private:
    inline static std::atomic<bool> s_isHeld = false;
    inline static int s_pipe[2];
    struct sigaction m_action {};
    sigset_t m_mask{};
};

bool isListening(int descriptor) {
    int value = 0;
    socklen_t size = sizeof value;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &value, &size) == 0 && value;
}

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) != -1;
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
        ASSERT_TRUE(port::connectTo(socket.get(), peers::loopbackAddress(m_server.GetPort())));
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
    NySe::UniqueSocket sockets[] = {
        NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0)),
        NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0))};
    {
        const NoDescriptors none;
        for (const NySe::UniqueSocket& socket : sockets) connect(socket);
        ASSERT_TRUE(m_server.log->await("OnCanAccept 127.0.0.1", 2)) << "that of SetUp, and one";
        const double before = processorSeconds();
        port::sleep(1000);
        EXPECT_LT(processorSeconds() - before, 0.2);
        EXPECT_EQ(m_server.log->count("OnCanAccept 127.0.0.1"), 2);
    }
    for (NySe::UniqueSocket& socket : sockets)
        EXPECT_EQ(converse({std::move(socket), peers::kNeverStopping}), kAnswer);
    EXPECT_EQ(converse(m_server.connection()), kAnswer);
}

TEST_F(AcceptFaults, AShortageOfDescriptorsDoesNotDelayAStop) {
    NySe::UniqueSocket sockets[] = {
        NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0)),
        NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0))};
    {
        const NoDescriptors none;
        for (const NySe::UniqueSocket& socket : sockets) connect(socket);
        port::sleep(200);
        const ULONGLONG start = port::milliseconds();
        EXPECT_EQ(m_server.StopAccept(), 0);
        EXPECT_LT(port::milliseconds() - start, 20000u);
    }
    for (NySe::UniqueSocket& socket : sockets) socket.reset();
    EXPECT_TRUE(eventually([this] { return countThreads() <= m_before; }));
}

// Another descriptor of the connection would keep it open past the close alone.
TEST_F(AcceptFaults, AConnectionWithoutAThreadIsShutDown) {
    std::unique_ptr<NoThreads> none;
    std::vector<NySe::UniqueSocket> others;
    m_server.onCanAccept = [&] {
        for (int descriptor = 3; descriptor < 256; ++descriptor)
            if (peerPortOf(descriptor)) others.push_back(otherHandleOf(descriptor));
        none = std::make_unique<NoThreads>();
    };
    peers::Connection peer = m_server.connection();
    EXPECT_TRUE(peer.awaitClose());
    ASSERT_TRUE(m_server.onCanAccept.awaitCalls(2)) << "that of SetUp, and this one";
    EXPECT_EQ(m_server.log->count("CreateInstance"), 1) << "that of SetUp";
    none.reset();
    m_server.onCanAccept = [] {};
    EXPECT_EQ(converse(m_server.connection()), kAnswer);
}

// Otherwise the thread could accept at another thread's socket that got the descriptor.
TEST_F(AcceptFaults, TheListeningSocketIsClosedWhenTheThreadHasLeftAccept) {
    int listener = 3;
    while (listener < 256 && !isListening(listener)) ++listener;
    ASSERT_LT(listener, 256);
    const HeldThread held;
    m_server.SetPort(m_nobody.port());
    std::thread stop([this] { m_server.StopAccept(); });
    EXPECT_TRUE(eventually([&] { return !isListening(listener); }));
    port::sleep(100);
    EXPECT_TRUE(isOpen(listener));
    held.release();
    stop.join();
    EXPECT_FALSE(isOpen(listener));
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
