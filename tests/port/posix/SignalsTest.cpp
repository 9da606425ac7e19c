// A host's signals interrupt no call of the library, and its handlers run on its own threads.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>

#include "tests/socket/LocalConnection.h"
#include "tests/support/TempFile.h"

namespace {

std::atomic<int> signals = 0;

class InterruptedCall : public testing::Test {
  protected:
    InterruptedCall() {
        struct sigaction handled {};  // without SA_RESTART
        handled.sa_handler = [](int) { ++signals; };
        ::sigaction(SIGUSR1, &handled, &m_before);
    }
    ~InterruptedCall() override { ::sigaction(SIGUSR1, &m_before, nullptr); }

    // Makes the call, and interrupts it every 10 ms, for at most 3 s; after some interruptions does
    // `change`.
    template <class Call, class Change>
    static auto interrupted(Call call, Change change) {
        signals = 0;
        std::atomic<bool> isOver = false;
        std::thread other([&, caller = ::pthread_self()] {
            for (int count = 0; !isOver && count < 300; ++count) {
                port::sleep(10);
                ::pthread_kill(caller, SIGUSR1);
                if (count == 10) change();
            }
        });
        const auto result = call();
        isOver = true;
        other.join();
        EXPECT_GT(signals, 0);
        return result;
    }

    // Checks that the call ends at its time-out of 200 ms all the same.
    template <class Call>
    static void expectTimeOut(Call call) {
        const auto timed = [&call] {
            const ULONGLONG start = port::milliseconds();
            call();
            return port::milliseconds() - start;
        };
        const ULONGLONG taken = interrupted(timed, [] {});
        EXPECT_GE(taken, 199u);
        EXPECT_LT(taken, 3000u);  // for so long signals lengthen a call that begins anew
    }
    static void setTimeOut(SOCKET socket, int option) {
        constexpr int kTimeOut = 200;
        ASSERT_EQ(port::setSocketOption(socket, option, &kTimeOut, sizeof kTimeOut), 0);
    }

    // Sends until there is no space for more, and waiting finds none: the receiver acknowledges
    // late, and the system enlarges the buffers.
    static void fill(SOCKET socket) {
        port::setBlocking(socket, false);
        for (int failures = 0; failures < 3; port::sleep(failures ? 500 : 0))
            failures = send(socket) > 0 ? 0 : failures + 1;
        port::setBlocking(socket, true);
    }
    static int send(SOCKET socket) {
        static const std::string piece(65536, 'x');
        return port::send(socket, piece.data(), static_cast<int>(piece.size()), 0);
    }

    peers::WinsockSession m_winsock;
    char m_byte = 0;

  private:
    struct sigaction m_before {};
};

TEST_F(InterruptedCall, SleepsTheWholeTime) {
    expectTimeOut([] { port::sleep(200); });
    expectTimeOut([] { EXPECT_FALSE(port::Event(false).wait(200)); });
}

TEST_F(InterruptedCall, ReceivesUntilItsTimeOut) {
    const peers::SocketPair pair;
    setTimeOut(pair.nearEnd(), SO_RCVTIMEO);
    expectTimeOut([&] {
        EXPECT_EQ(port::receive(pair.nearEnd(), &m_byte, 1, 0), -1);
        EXPECT_EQ(port::lastSocketError(), WSAETIMEDOUT);
    });
}

TEST_F(InterruptedCall, SendsUntilItsTimeOut) {
    const peers::SocketPair pair;
    fill(pair.nearEnd());
    setTimeOut(pair.nearEnd(), SO_SNDTIMEO);
    expectTimeOut([&] {
        EXPECT_EQ(send(pair.nearEnd()), -1);
        EXPECT_EQ(port::lastSocketError(), WSAETIMEDOUT);
    });
}

TEST_F(InterruptedCall, ReceivesWhatArrivesLater) {
    peers::SocketPair pair;
    peers::Connection peer = pair.takeFarEnd();
    EXPECT_EQ(interrupted([&] { return port::receive(pair.nearEnd(), &m_byte, 1, 0); },
                          [&] { peer.send("x"); }),
              1);
    EXPECT_EQ(m_byte, 'x');
}

TEST_F(InterruptedCall, SendsOnceThereIsSpace) {
    peers::SocketPair pair;
    peers::Connection peer = pair.takeFarEnd();
    fill(pair.nearEnd());
    const int sent = interrupted([&] { return port::send(pair.nearEnd(), "x", 1, 0); },
                                 [&] {
                                     std::string received(1 << 24, '\0');
                                     port::setBlocking(peer.socket(), false);
                                     port::receive(peer.socket(), received.data(), 1 << 24, 0);
                                 });
    EXPECT_EQ(sent, 1);
}

TEST_F(InterruptedCall, WaitsUntilTheSocketIsReadyOrItsTimeIsOver) {
    peers::SocketPair pair;
    peers::Connection peer = pair.takeFarEnd();
    const auto wait = [&](long seconds, long microseconds) {
        return port::waitFor(pair.nearEnd(), port::Wanted::readable, seconds, microseconds);
    };
    expectTimeOut([&] { EXPECT_EQ(wait(0, 200'000), 0); });
    EXPECT_EQ(interrupted([&] { return wait(60, 0); }, [&] { peer.send("x"); }), 1);
}

TEST_F(InterruptedCall, AcceptsWhoConnectsLater) {
    const NySe::UniqueSocket listener = peers::bindToLoopback();
    ASSERT_TRUE(port::listenOn(listener.get(), 5));
    sockaddr_in peer{};
    NySe::UniqueSocket client;
    const NySe::UniqueSocket accepted(interrupted(
        [&] { return port::acceptFrom(listener.get(), peer); },
        [&] { client = peers::connectTo(static_cast<unsigned int>(peers::portOf(listener))); }));
    EXPECT_TRUE(accepted);
}

TEST_F(InterruptedCall, ReadsAPipeOnceItIsWritten) {
    const TempFolder folder;
    const WideText path = folder.path("pipe");
    const std::string name(path.begin(), path.end());
    ASSERT_EQ(::mkfifo(name.c_str(), 0600), 0);
    const port::FileHandle file = port::openFile(path.c_str(), GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(file, port::kNoFile);
    const int writer = ::open(name.c_str(), O_WRONLY | O_NONBLOCK);
    ASSERT_NE(writer, -1);
    const auto read = [&] { return port::readFile(file, &m_byte, 1); };
    EXPECT_EQ(interrupted(read, [&] { EXPECT_EQ(::write(writer, "x", 1), 1); }), 1);
    port::closeFile(file);
    ::close(writer);
}

// A full queue leaves the connect without an answer, until the test changes that.
class InterruptedConnect : public InterruptedCall {
  protected:
    bool connectWhile(const std::function<void()>& change) {
        port::listenOn(m_listener.get(), 0);
        const auto port = static_cast<unsigned int>(peers::portOf(m_listener));
        const auto queued = peers::connectWhileAnswered(port, 16);
        const auto connect = [&] {
            const bool isConnected = port::connectTo(m_socket.get(), peers::loopbackAddress(port));
            m_error = isConnected ? 0 : port::lastSocketError();
            return isConnected;
        };
        return interrupted(connect, change);
    }

    NySe::UniqueSocket m_listener = peers::bindToLoopback();
    NySe::UniqueSocket m_socket{port::createSocket(AF_INET, SOCK_STREAM, 0)};
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
