#include <gtest/gtest.h>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

using Codes = std::vector<int>;

class ClientIsConnected : public testing::Test {
  protected:
    void connectTo(const peers::Peer& peer) {
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }
    bool isBlocking() {
        m_client.SetReceiveTimeOut(50);
        char byte = 0;
        ::recv(m_client.GetSocket(), &byte, 1, 0);
        return ::WSAGetLastError() == WSAETIMEDOUT;
    }

    ProbeClient m_client;
};

TEST_F(ClientIsConnected, IsFalseForANeverOpenedObject) {
    EXPECT_EQ(m_client.IsConnected(), 0);
    EXPECT_EQ(m_client.codes, Codes{}) << "neither mode nor funnel is touched";
}

TEST_F(ClientIsConnected, IsTrueForAnIdleConnection) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    EXPECT_EQ(m_client.IsConnected(), 1);
    // Non-blocking, then blocking when the peek would block and again at the end.
    EXPECT_EQ(m_client.codes, (Codes{0, 0, 0}));
    EXPECT_TRUE(isBlocking());
}

TEST_F(ClientIsConnected, EndsBlockingWhateverTheModeWas) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    m_client.SetBlockingMode(1);
    EXPECT_EQ(m_client.IsConnected(), 1);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_TRUE(isBlocking());
}

TEST_F(ClientIsConnected, IsFalseOnceThePeerHasClosed) {
    peers::Peer peer(peers::sendingAndClosing());
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 0);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
}

TEST_F(ClientIsConnected, IsFalseOnceThePeerHasEndedItsSide) {
    peers::Peer peer(peers::halfClosing());
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 0);
}

TEST_F(ClientIsConnected, IsTrueWhileDataIsUnread) {
    peers::Peer peer(peers::sendingAndClosing("last words"));
    connectTo(peer);
    ASSERT_EQ(peer.waitForServed(1), 1);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 1);
    char buffer[20];
    EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 10), 10) << "the peek took nothing";
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 0);
}

TEST_F(ClientIsConnected, IsFalseOnceThePeerHasReset) {
    peers::ResettingPort port;
    ASSERT_EQ(m_client.connectTo(port.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.IsConnected(), 1);
    port.resetConnections();
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 0);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
}

// The peek of a socket that no longer receives fails as "shut down".
TEST_F(ClientIsConnected, IsFalseAndNonBlockingForABrokenSocket) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    ASSERT_EQ(::shutdown(m_client.GetSocket(), SD_RECEIVE), 0);
    EXPECT_EQ(m_client.IsConnected(), 0);
    EXPECT_EQ(m_client.codes, Codes{0});
    EXPECT_EQ(m_client.GetBlockingMode(), 1);
}

// One byte is too small for the peek of a longer datagram.
TEST_F(ClientIsConnected, IsFalseAndNonBlockingWithALongDatagramWaiting) {
    char loopback[] = "127.0.0.1";
    ASSERT_EQ(m_client.CreateUDPSocket(0, 0, loopback, loopback), UTE_SUCCESS);
    sockaddr_in self{};
    int length = sizeof self;
    ::getsockname(m_client.GetSocket(), reinterpret_cast<sockaddr*>(&self), &length);
    ASSERT_EQ(::sendto(m_client.GetSocket(), "long", 4, 0, reinterpret_cast<sockaddr*>(&self),
                       sizeof self),
              4);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.IsConnected(), 0);
    EXPECT_EQ(m_client.GetBlockingMode(), 1);
}

// Its peek fails as "not connected", which is none of the errors that tell a dead connection.
TEST_F(ClientIsConnected, IsTrueForASocketThatNeverConnected) {
    peers::RefusingPort port;
    char loopback[] = "127.0.0.1";
    ASSERT_EQ(m_client.ConnectBound(0, port.port(), loopback, loopback, AF_INET, SOCK_STREAM),
              UTE_SOCK_CONNECT_FAILED);
    m_client.codes.clear();
    EXPECT_EQ(m_client.IsConnected(), 1);
    EXPECT_EQ(m_client.codes, (Codes{0, 0}));
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
}

}  // namespace
