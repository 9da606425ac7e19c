// Arguments and states that POSIX systems treat otherwise than Winsock.
#include <gtest/gtest.h>

#include <cerrno>
#include <limits>
#include <thread>

#include "tests/socket/LocalConnection.h"

namespace {

using port::Wanted;

constexpr long kHighest = std::numeric_limits<long>::max();

NySe::UniqueSocket newSocket() {
    return NySe::UniqueSocket(port::createSocket(AF_INET, SOCK_STREAM, 0));
}

TEST(SocketLimits, ThereIsNoNegativeTime) {
    const peers::SocketPair pair;
    EXPECT_EQ(port::waitFor(pair.nearEnd(), Wanted::writable, -1, 0), -1);
    EXPECT_EQ(port::lastSocketError(), WSAEINVAL);
    EXPECT_EQ(port::waitFor(pair.nearEnd(), Wanted::writable, 0, -1), -1);
    EXPECT_EQ(port::lastSocketError(), WSAEINVAL);
}

TEST(SocketLimits, TheLongestTimeIsWaited) {
    peers::SocketPair pair;
    std::thread sender([far = pair.takeFarEnd()]() mutable {
        port::sleep(50);
        far.send("x");
        far.receive();
    });
    EXPECT_EQ(port::waitFor(pair.nearEnd(), Wanted::readable, kHighest, 0), 1);
    pair.closeNear();
    sender.join();
}

TEST(SocketLimits, ANegativeTimeOutIsNone) {
    const peers::SocketPair pair;
    int timeOut = -1;
    EXPECT_EQ(port::setSocketOption(pair.nearEnd(), SO_RCVTIMEO, &timeOut, sizeof timeOut), 0);
    EXPECT_EQ(peers::optionOf(pair.nearEnd(), SO_RCVTIMEO), 0);
}

TEST(SocketLimits, ANegativeLengthIsRefused) {
    peers::SocketPair pair;
    peers::Connection far = pair.takeFarEnd();
    far.send("text");
    sockaddr_in peer = peers::loopbackAddress(1);
    char buffer[4] = "";
    const SOCKET socket = pair.nearEnd();
    for (const auto& call : std::initializer_list<std::function<int()>>{
             [&] { return port::receive(socket, buffer, -1, 0); },
             [&] { return port::receiveFrom(socket, buffer, -1, peer); },
             [&] { return port::send(socket, buffer, -1, 0); },
             [&] { return port::sendTo(socket, buffer, -1, peer); }}) {
        errno = 0;
        EXPECT_EQ(call(), -1);
        EXPECT_EQ(port::lastSocketError(), WSAEFAULT);
    }
    EXPECT_EQ(port::receive(socket, buffer, 4, 0), 4) << "what was sent is still there";
}

TEST(SocketLimits, AnErrorWithoutADescribedNumberTakesNoneOfAnother) {
    const NySe::UniqueSocket socket = newSocket();
    constexpr char kDevice[] = "no-such-device";
    EXPECT_EQ(port::setSocketOption(socket.get(), SO_BINDTODEVICE, kDevice, sizeof kDevice), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_EQ(port::lastSocketError(), WSASYSCALLFAILURE);
    errno = ENOEXEC;
    EXPECT_EQ(port::lastSocketError(), WSASYSCALLFAILURE) << "not WSA_NOT_ENOUGH_MEMORY";
    errno = 0;
    EXPECT_EQ(port::lastSocketError(), 0);
}

TEST(SocketLimits, ASendBeforeAConnectFailsAsNotConnected) {
    const NySe::UniqueSocket socket = newSocket();
    EXPECT_EQ(port::send(socket.get(), "x", 1, 0), -1);
    EXPECT_EQ(port::lastSocketError(), WSAENOTCONN);
}

TEST(SocketLimits, ASocketThatIsNotConnectedIsNeverReady) {
    const NySe::UniqueSocket socket = newSocket();
    for (const Wanted wanted : {Wanted::readable, Wanted::writable}) {
        const ULONGLONG start = port::milliseconds();
        EXPECT_EQ(port::waitFor(socket.get(), wanted, 0, 60'000), 0);
        EXPECT_GE(port::milliseconds() - start, 60u);
    }
}

TEST(SocketLimits, AFailedConnectMakesNothingReady) {
    const peers::RefusingPort peer;
    const NySe::UniqueSocket socket = newSocket();
    port::setBlocking(socket.get(), false);
    EXPECT_FALSE(port::connectTo(socket.get(), peers::loopbackAddress(peer.port())));
    EXPECT_EQ(port::waitForConnect(socket.get(), 900'000), port::Readiness::failed);
    const ULONGLONG start = port::milliseconds();
    EXPECT_EQ(port::waitFor(socket.get(), Wanted::writable, 3, 0), 0);
    EXPECT_LT(port::milliseconds() - start, 2000u) << "nothing is left to wait for";
    EXPECT_EQ(peers::optionOf(socket.get(), SO_ERROR), WSAECONNREFUSED) << "not taken by the wait";
}

// The system keeps the port of a connection that this end closes first.
TEST(SocketLimits, APortIsFreeAgainWhenItsListenerHasClosedItsConnections) {
    const peers::WinsockSession winsock;
    const unsigned short port = peers::freePort();
    for (int round = 0; round < 3; ++round) {
        const NySe::UniqueSocket listener = newSocket();
        ASSERT_TRUE(port::bindSocket(listener.get(), peers::loopbackAddress(port))) << round;
        ASSERT_TRUE(port::listenOn(listener.get(), 1));
        const NySe::UniqueSocket client = peers::connectTo(port);
        sockaddr_in peer{};
        NySe::UniqueSocket accepted(port::acceptFrom(listener.get(), peer));
        accepted.reset();
        char byte;
        EXPECT_EQ(port::receive(client.get(), &byte, 1, 0), 0);
        const NySe::UniqueSocket other = newSocket();
        EXPECT_FALSE(port::bindSocket(other.get(), peers::loopbackAddress(port)));
    }
    const NySe::UniqueSocket bound = newSocket();
    ASSERT_TRUE(port::bindSocket(bound.get(), peers::loopbackAddress(port)));
    const NySe::UniqueSocket other = newSocket();
    EXPECT_FALSE(port::bindSocket(other.get(), peers::loopbackAddress(port)));
}

}  // namespace
