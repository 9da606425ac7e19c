// A host's signals interrupt no call of the library, and its handlers run on its own threads.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <thread>

#include "tests/socket/LocalConnection.h"

namespace {

using port::Wanted;

std::atomic<int> signals = 0;

// Interrupts the calls of the thread that makes it every 20 ms, for at most 3 s.
class Interruptions {
  public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) { ++signals; };  // and no SA_RESTART
        ::sigaction(SIGUSR1, &action, &m_before);
        signals = 0;
        m_thread = std::thread([this, target = ::pthread_self()] {
            for (int count = 0; !m_isOver && count < 150; ++count) {
                port::sleep(20);
                ::pthread_kill(target, SIGUSR1);
            }
        });
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;
    ~Interruptions() {
        m_isOver = true;
        m_thread.join();
        EXPECT_GT(signals, 0);
        ::sigaction(SIGUSR1, &m_before, nullptr);
    }

  private:
    struct sigaction m_before {};
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

// Checks that the call ends at its time-out of 200 ms all the same.
template <class Call>
void expectTimeOut(Call call) {
    const ULONGLONG start = port::milliseconds();
    {
        const Interruptions interruptions;
        call();
    }
    const ULONGLONG taken = port::milliseconds() - start;
    EXPECT_GE(taken, 199u);
    EXPECT_LT(taken, 1500u);
}

void setTimeOut(SOCKET socket, int option) {
    constexpr int kTimeOut = 200;
    ASSERT_EQ(port::setSocketOption(socket, option, &kTimeOut, sizeof kTimeOut), 0);
}

TEST(Signals, LengthenNoWait) {
    const peers::SocketPair pair;
    expectTimeOut(
        [&] { EXPECT_EQ(port::waitFor(pair.nearEnd(), Wanted::readable, 0, 200'000), 0); });
    expectTimeOut([] { port::sleep(200); });
    expectTimeOut([] { EXPECT_FALSE(port::Event(false).wait(200)); });
}

TEST(Signals, LengthenNoReceive) {
    const peers::SocketPair pair;
    setTimeOut(pair.nearEnd(), SO_RCVTIMEO);
    expectTimeOut([&] {
        char byte;
        EXPECT_EQ(port::receive(pair.nearEnd(), &byte, 1, 0), -1);
        EXPECT_EQ(port::lastSocketError(), WSAETIMEDOUT);
    });
}

TEST(Signals, LengthenNoSend) {
    const peers::SocketPair pair;
    const std::string piece(65536, 'x');
    const auto send = [&] {
        return port::send(pair.nearEnd(), piece.data(), static_cast<int>(piece.size()), 0);
    };
    port::setBlocking(pair.nearEnd(), false);
    while (send() > 0) {
    }
    port::setBlocking(pair.nearEnd(), true);
    setTimeOut(pair.nearEnd(), SO_SNDTIMEO);
    expectTimeOut([&] {
        EXPECT_EQ(send(), -1);
        EXPECT_EQ(port::lastSocketError(), WSAETIMEDOUT);
    });
}

TEST(Signals, LoseNoBytes) {
    peers::SocketPair pair;
    peers::Connection far = pair.takeFarEnd();
    std::thread sender([&] {
        port::sleep(100);
        far.send("text");
    });
    char buffer[4] = "";
    {
        const Interruptions interruptions;
        EXPECT_EQ(port::receive(pair.nearEnd(), buffer, sizeof buffer, 0), 4);
    }
    sender.join();
}

// A connect that waits for a listener with a full queue, until the test changes that.
class InterruptedConnect : public testing::Test {
  protected:
    bool connectWhile(const std::function<void()>& change) {
        port::listenOn(m_listener.get(), 0);
        const int port = peers::portOf(m_listener);
        const auto queued = peers::connectWhileAnswered(static_cast<unsigned>(port), 16);
        std::thread changing([&] {
            port::sleep(100);
            change();
        });
        m_socket.reset(port::createSocket(AF_INET, SOCK_STREAM, 0));
        bool isConnected = false;
        {
            const Interruptions interruptions;
            isConnected = port::connectTo(m_socket.get(),
                                          peers::loopbackAddress(static_cast<unsigned>(port)));
            m_error = isConnected ? 0 : port::lastSocketError();
        }
        changing.join();
        return isConnected;
    }

    peers::WinsockSession m_winsock;
    NySe::UniqueSocket m_listener = peers::bindToLoopback();
    NySe::UniqueSocket m_socket;
    int m_error = -1;
};

TEST_F(InterruptedConnect, GoesOn) {
    EXPECT_TRUE(connectWhile([&] { port::listenOn(m_listener.get(), 16); }));
    EXPECT_EQ(port::send(m_socket.get(), "x", 1, 0), 1);
}

TEST_F(InterruptedConnect, ReportsWhyItFails) {
    EXPECT_FALSE(connectWhile([&] { m_listener.reset(); }));
    EXPECT_EQ(m_error, WSAECONNREFUSED);
}

// What the calling thread blocks, as text: user's, alarm's, terminal's; its own fault's; a
// profiler's.
std::string blockedSignals() {
    sigset_t blocked;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    std::string text;
    for (const int number : {SIGUSR1, SIGALRM, SIGINT, SIGSEGV, SIGABRT, SIGPROF})
        text += ::sigismember(&blocked, number) ? 'b' : '-';
    return text;
}

TEST(Signals, AreForThreadsOfTheHost) {
    static port::Event isDone(false);
    static std::string first, second;
    const std::string own = blockedSignals();
    EXPECT_NE(port::startThread(
                  [](void*) {
                      first = blockedSignals();
                      isDone.set();
                  },
                  nullptr),
              port::kNoThread);
    ASSERT_TRUE(isDone.wait(30'000));
    EXPECT_EQ(first, "bbb---");
    port::Thread thread;
    ASSERT_NE(thread.start([](void*) { second = blockedSignals(); }, nullptr), port::kNoThread);
    ASSERT_TRUE(thread.waitForEnd(30'000));
    EXPECT_EQ(second, "bbb---");
    EXPECT_EQ(blockedSignals(), own);
}

}  // namespace
