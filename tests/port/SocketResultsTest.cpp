// What sockets promise beyond the calls of the system.
#include <gtest/gtest.h>

#include "tests/socket/LocalConnection.h"

namespace {

class PortSockets : public testing::Test {
  protected:
    peers::WinsockSession m_winsock;
};

int sendOne(SOCKET socket) {
    return port::send(socket, "x", 1, 0);
}

TEST_F(PortSockets, AreReadyForASendThatFailsOnceThePeerHasReset) {
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

TEST_F(PortSockets, SendNothingOnceTheyHaveFinishedSending) {
    const peers::SocketPair pair;
    EXPECT_TRUE(port::finishSending(pair.nearEnd()));
    EXPECT_EQ(sendOne(pair.nearEnd()), -1);
    EXPECT_EQ(port::lastSocketError(), WSAESHUTDOWN);
}

TEST_F(PortSockets, ShareNoPortWithAnother) {
    const NySe::UniqueSocket bound = peers::bindToLoopback();
    const sockaddr_in address = peers::loopbackAddress(static_cast<unsigned>(peers::portOf(bound)));
    const NySe::UniqueSocket other(port::createSocket(AF_INET, SOCK_STREAM, 0));
    EXPECT_FALSE(port::bindSocket(other.get(), address));
    EXPECT_EQ(port::lastSocketError(), WSAEADDRINUSE);
    ASSERT_TRUE(port::listenOn(bound.get(), 1));
    EXPECT_FALSE(port::bindSocket(other.get(), address));
    EXPECT_EQ(port::lastSocketError(), WSAEADDRINUSE);
}

TEST_F(PortSockets, FindThisHostByNoName) {
    char name[256] = "";
    in_addr byName{}, byNoName{};
    ASSERT_TRUE(port::localHostName(name, sizeof name));
    if (!port::lookUpAddress(name, byName)) GTEST_SKIP() << "this host's name has no address";
    EXPECT_TRUE(port::lookUpAddress("", byNoName));
    EXPECT_EQ(byNoName.s_addr, byName.s_addr);
}

}  // namespace
