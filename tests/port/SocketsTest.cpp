// What sockets promise beyond the calls of the system.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/socket/LocalConnection.h"
#include "tests/support/Gate.h"

namespace {

class PortSocket : public testing::Test {
  protected:
    // A failed call and the number of its error; 0 if it succeeded.
    static int errorOf(bool succeeded) { return succeeded ? 0 : port::lastSocketError(); }

    static int sendOne(SOCKET socket) { return port::send(socket, "x", 1, 0); }

    peers::WinsockSession m_winsock;
    char m_buffer[8] = "";
};

TEST_F(PortSocket, IsNotShutDownWhileItListens) {
    const NySe::UniqueSocket listener = peers::bindToLoopback();
    ASSERT_TRUE(port::listenOn(listener.get(), 5));
    EXPECT_EQ(errorOf(port::shutDown(listener.get())), WSAENOTCONN);
    EXPECT_TRUE(peers::isReachable(static_cast<unsigned int>(peers::portOf(listener))));
}

TEST_F(PortSocket, EndsAnAcceptThatWaitsWhenItIsClosed) {
    NySe::UniqueSocket listener = peers::bindToLoopback();
    const auto port = static_cast<unsigned int>(peers::portOf(listener));
    ASSERT_TRUE(port::listenOn(listener.get(), 5));
    std::atomic<bool> hasEnded = false;
    std::thread accepting([&hasEnded, socket = listener.get()] {
        sockaddr_in peer{};
        EXPECT_EQ(port::acceptFrom(socket, peer), INVALID_SOCKET);
        hasEnded = true;
    });
    port::sleep(50);
    EXPECT_TRUE(port::closeSocket(listener.release()));
    const bool endsByItself = eventually([&] { return hasEnded.load(); }, std::chrono::seconds(20));
    EXPECT_TRUE(endsByItself);
    if (!endsByItself) peers::isReachable(port);  // which wakes it
    accepting.join();
}

TEST_F(PortSocket, SendsNothingOnceItHasFinished) {
    const peers::SocketPair pair;
    ASSERT_TRUE(port::finishSending(pair.nearEnd()));
    EXPECT_EQ(sendOne(pair.nearEnd()), -1);
    EXPECT_EQ(port::lastSocketError(), WSAESHUTDOWN);
}

TEST_F(PortSocket, ReportsAndRemovesADatagramThatIsTooLong) {
    const NySe::UniqueSocket from = peers::bindToLoopback(SOCK_DGRAM);
    const NySe::UniqueSocket to = peers::bindToLoopback(SOCK_DGRAM);
    const sockaddr_in address =
        peers::loopbackAddress(static_cast<unsigned int>(peers::portOf(to)));
    ASSERT_EQ(port::sendTo(from.get(), "much too long", 13, address), 13);
    ASSERT_EQ(port::sendTo(from.get(), "exact 8.", 8, address), 8);
    sockaddr_in peer{};
    EXPECT_EQ(port::receiveFrom(to.get(), m_buffer, sizeof m_buffer, peer), -1);
    EXPECT_EQ(port::lastSocketError(), WSAEMSGSIZE);
    EXPECT_EQ(port::receiveFrom(to.get(), m_buffer, sizeof m_buffer, peer), 8);
    EXPECT_EQ(std::string(m_buffer, 8), "exact 8.");
    EXPECT_EQ(ntohs(peer.sin_port), peers::portOf(from));
}

TEST_F(PortSocket, ReportsATimeOutOnlyOfABlockingReceive) {
    const peers::SocketPair pair;
    const int timeOut = 50;
    ASSERT_EQ(port::setSocketOption(pair.nearEnd(), SO_RCVTIMEO, &timeOut, sizeof timeOut), 0);
    for (const auto& [isBlocking, error] :
         {std::pair{true, WSAETIMEDOUT}, {false, WSAEWOULDBLOCK}}) {
        ASSERT_TRUE(port::setBlocking(pair.nearEnd(), isBlocking));
        EXPECT_EQ(port::receive(pair.nearEnd(), m_buffer, 1, 0), -1);
        EXPECT_EQ(port::lastSocketError(), error);
    }
}

TEST_F(PortSocket, IsReadyForASendThatFailsOnceThePeerHasReset) {
    peers::ResettingPort peer;
    const NySe::UniqueSocket socket = peers::connectTo(peer.port());
    ASSERT_TRUE(socket);
    peer.resetConnections();
    ASSERT_EQ(port::waitFor(socket.get(), port::Wanted::readable, 10, 0), 1);
    EXPECT_EQ(port::waitFor(socket.get(), port::Wanted::writable, 0, 0), 1);
    EXPECT_EQ(sendOne(socket.get()), -1);
    const int error = port::lastSocketError();
    EXPECT_TRUE(error == WSAECONNRESET || error == WSAECONNABORTED) << error;
    EXPECT_EQ(sendOne(socket.get()), -1);
    const int later = port::lastSocketError();
    EXPECT_TRUE(later == WSAECONNRESET || later == WSAECONNABORTED) << later;
}

TEST_F(PortSocket, SharesNoPortWithAnother) {
    const NySe::UniqueSocket bound = peers::bindToLoopback();
    const sockaddr_in address = peers::loopbackAddress(static_cast<unsigned>(peers::portOf(bound)));
    const NySe::UniqueSocket other(port::createSocket(AF_INET, SOCK_STREAM, 0));
    EXPECT_FALSE(port::bindSocket(other.get(), address));
    EXPECT_EQ(port::lastSocketError(), WSAEADDRINUSE);
    ASSERT_TRUE(port::listenOn(bound.get(), 1));
    EXPECT_FALSE(port::bindSocket(other.get(), address));
    EXPECT_EQ(port::lastSocketError(), WSAEADDRINUSE);
}

TEST_F(PortSocket, FindsThisHostByNoName) {
    char name[256] = "";
    in_addr byName{}, byNoName{};
    ASSERT_TRUE(port::localHostName(name, sizeof name));
    if (!port::lookUpAddress(name, byName)) GTEST_SKIP() << "this host's name has no address";
    EXPECT_TRUE(port::lookUpAddress("", byNoName));
    EXPECT_EQ(byNoName.s_addr, byName.s_addr);
}

}  // namespace
