// Signals that arrive while a call waits.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"
#include "tests/support/TempFile.h"

namespace {

class InterruptedCall : public testing::Test {
  protected:
    InterruptedCall() {
        struct sigaction handled {};  // without SA_RESTART
        handled.sa_handler = [](int) {};
        ::sigaction(SIGUSR1, &handled, &m_before);
    }
    ~InterruptedCall() override { ::sigaction(SIGUSR1, &m_before, nullptr); }

    // Makes the call, which waits; interrupts it several times; then does what ends the wait.
    template <class Call, class End>
    auto interrupted(Call call, End end) {
        std::thread other([caller = ::pthread_self(), end] {
            for (int i = 0; i < 20; ++i) {
                port::sleep(5);
                ::pthread_kill(caller, SIGUSR1);
            }
            end();
        });
        const auto result = call();
        other.join();
        return result;
    }

    peers::WinsockSession m_winsock;
    char m_byte = 0;

  private:
    struct sigaction m_before {};
};

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
    const std::string block(100000, 'x');
    port::setBlocking(pair.nearEnd(), false);
    while (port::waitFor(pair.nearEnd(), port::Wanted::writable, 0, 50000) == 1)
        port::send(pair.nearEnd(), block.data(), static_cast<int>(block.size()), 0);
    port::setBlocking(pair.nearEnd(), true);
    const int sent = interrupted([&] { return port::send(pair.nearEnd(), block.data(), 1, 0); },
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
    EXPECT_EQ(interrupted([&] { return wait(0, 30000); }, [] {}), 0);
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

// A full queue leaves the connect without an answer, until the peers in it are accepted.
TEST_F(InterruptedCall, ConnectsOnceThePeerAccepts) {
    const NySe::UniqueSocket listener = peers::bindToLoopback();
    ASSERT_TRUE(port::listenOn(listener.get(), 1));
    const auto port = static_cast<unsigned int>(peers::portOf(listener));
    const auto queued = peers::connectWhileAnswered(port, 20);
    ASSERT_LT(queued.size(), 20u);
    std::vector<NySe::UniqueSocket> accepted;
    const NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    EXPECT_TRUE(
        interrupted([&] { return port::connectTo(socket.get(), peers::loopbackAddress(port)); },
                    [&] {
                        sockaddr_in peer{};
                        for (size_t i = 0; i < queued.size(); ++i)
                            accepted.emplace_back(port::acceptFrom(listener.get(), peer));
                    }));
    EXPECT_EQ(port::send(socket.get(), "x", 1, 0), 1);
}

TEST_F(InterruptedCall, OpensAndReadsAPipeOnceItIsWritten) {
    const TempFolder folder;
    const WideText path = folder.path("pipe");
    const std::string name(path.begin(), path.end());
    ASSERT_EQ(::mkfifo(name.c_str(), 0600), 0);
    int writer = -1;
    const auto open = [&] {
        writer = ::open(name.c_str(), O_WRONLY | O_NONBLOCK);
        return writer != -1;
    };
    const port::FileHandle file =
        interrupted([&] { return port::openFile(path.c_str(), GENERIC_READ, OPEN_EXISTING); },
                    [&] { eventually(open, std::chrono::seconds(5)); });
    ASSERT_NE(file, port::kNoFile);
    EXPECT_EQ(interrupted([&] { return port::readFile(file, &m_byte, 1); },
                          [&] { EXPECT_EQ(::write(writer, "x", 1), 1); }),
              1);
    port::closeFile(file);
    ::close(writer);
}

TEST_F(InterruptedCall, SleepsTheWholeTime) {
    const ULONGLONG start = port::milliseconds();
    interrupted(
        [] {
            port::sleep(150);
            return 0;
        },
        [] {});
    EXPECT_GE(port::milliseconds() - start, 150u);
}

}  // namespace
