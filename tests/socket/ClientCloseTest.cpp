#include <gmock/gmock.h>

#include <memory>

#include "tests/socket/Peers.h"
#include "tests/socket/Probes.h"
#include "tests/support/System.h"

namespace {

using testing::ElementsAre;

class ClientClose : public testing::Test {
  protected:
    void connect() {
        ASSERT_EQ(m_client->connectTo(m_peer.port()), UTE_SUCCESS);
        m_client->codes.clear();
    }
    int listen() { return m_client->WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")); }
    void expectForgotten() {
        EXPECT_EQ(m_client->GetSocket(), INVALID_SOCKET);
        EXPECT_EQ(m_client->GetRemotePort(), 0);
        EXPECT_EQ(m_client->GetLocalPort(), 0);
        EXPECT_EQ(m_client->GetAcceptPort(), 0);
        EXPECT_STREQ(m_client->getszAddress(), "");
    }

    peers::Peer m_peer{peers::echo()};
    std::unique_ptr<ProbeClient> m_client = std::make_unique<ProbeClient>();
    char m_loopback[10] = "127.0.0.1";
};

TEST_F(ClientClose, ResetsTheConnectionAndAllowsAnotherOne) {
    EXPECT_EQ(m_client->CloseConnection(), UTE_SUCCESS) << "harmless when closed";
    for (int round = 1; round <= 3; ++round) {
        connect();
        EXPECT_EQ(m_client->CloseConnection(), UTE_SUCCESS);
        EXPECT_THAT(m_client->codes, ElementsAre(0));
        expectForgotten();
        EXPECT_EQ(m_peer.waitForServed(round), round) << "the peer sees the end";
    }
}

TEST_F(ClientClose, ReportsAFailedShutdownAndClosesAnyway) {
    peers::RefusingPort port;
    ASSERT_EQ(m_client->ConnectBound(0, port.port(), m_loopback, m_loopback, AF_INET, SOCK_STREAM),
              UTE_SOCK_CONNECT_FAILED);
    const SOCKET socket = m_client->GetSocket();
    EXPECT_EQ(m_client->CloseConnection(), UTE_ERROR);
    expectForgotten();
    EXPECT_FALSE(port::closeSocket(socket)) << "closed already";
}

TEST_F(ClientClose, ReportsAFailedClose) {
    connect();
    port::closeSocket(m_client->GetSocket());
    EXPECT_EQ(m_client->CloseConnection(), UTE_ERROR);
    expectForgotten();
}

TEST_F(ClientClose, ShutsDownAStreamFirst) {
    connect();
    const NySe::UniqueSocket other = otherHandleOf(m_client->GetSocket());
    ASSERT_EQ(port::send(other.get(), "x", 1, 0), 1);
    EXPECT_EQ(m_client->CloseConnection(), UTE_SUCCESS);
    EXPECT_EQ(m_peer.waitForServed(1), 1) << "the peer sees the end";
    EXPECT_EQ(port::send(other.get(), "x", 1, 0), SOCKET_ERROR);
}

TEST_F(ClientClose, DoesNotShutDownADatagramSocket) {
    const NySe::UniqueSocket peer = peers::bindToLoopback(SOCK_DGRAM);
    const auto port = static_cast<unsigned int>(peers::portOf(peer));
    ASSERT_EQ(m_client->Connect(port, m_loopback, -1, AF_INET, SOCK_DGRAM), UTE_SUCCESS);
    const NySe::UniqueSocket other = otherHandleOf(m_client->GetSocket());
    ASSERT_EQ(port::send(other.get(), "x", 1, 0), 1);
    EXPECT_EQ(m_client->CloseConnection(), UTE_SUCCESS);
    expectForgotten();
    EXPECT_EQ(port::send(other.get(), "x", 1, 0), 1);
}

TEST_F(ClientClose, ClosesTheListeningSocketToo) {
    ASSERT_EQ(listen(), UTE_SUCCESS);
    const auto port = static_cast<unsigned int>(m_client->GetAcceptPort());
    m_client->CloseConnection();
    expectForgotten();
    ProbeClient other;
    EXPECT_EQ(other.Connect(port, "127.0.0.1", -1), UTE_SOCK_CONNECT_FAILED);
    EXPECT_EQ(listen(), UTE_SUCCESS);
}

TEST_F(ClientClose, HappensWhenTheObjectIsDestroyed) {
    connect();
    const SOCKET socket = m_client->GetSocket();
    m_client.reset();
    EXPECT_EQ(m_peer.waitForServed(1), 1);
    EXPECT_FALSE(port::closeSocket(socket));
}

using ClientReset = ClientClose;

TEST_F(ClientReset, ResetsTheSocketsWithoutClosingThem) {
    connect();
    ASSERT_EQ(listen(), UTE_SUCCESS);
    const NySe::UniqueSocket leaked(m_client->GetSocket());
    m_client->codes.clear();
    EXPECT_EQ(m_client->Reset(), UTE_SUCCESS);
    EXPECT_THAT(m_client->codes, ElementsAre(0));
    expectForgotten();
    EXPECT_EQ(port::send(leaked.get(), "still", 5, 0), 5);
    char buffer[8];
    EXPECT_EQ(port::receive(leaked.get(), buffer, sizeof buffer, 0), 5);
    EXPECT_EQ(listen(), UTE_SUCCESS) << "the listening socket is forgotten too";
    m_client->CloseConnection();
    connect();
}

}  // namespace
