#include <gtest/gtest.h>

#include <memory>

#include "tests/socket/OtherHandle.h"
#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

using Codes = std::vector<int>;

void expectForgotten(const CUT_WSClient& client) {
    EXPECT_EQ(client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(client.GetRemotePort(), 0);
    EXPECT_EQ(client.GetLocalPort(), 0);
    EXPECT_EQ(client.GetAcceptPort(), 0);
    EXPECT_STREQ(client.getszAddress(), "");
}

TEST(ClientClose, ClosesTheConnectionAndForgetsIt) {
    peers::Peer peer(peers::silent());
    ProbeClient client;
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    client.codes.clear();
    EXPECT_EQ(client.CloseConnection(), UTE_SUCCESS);
    EXPECT_EQ(client.codes, Codes{0});
    expectForgotten(client);
    EXPECT_EQ(peer.waitForServed(1), 1) << "the peer sees the end";
}

TEST(ClientClose, IsHarmlessWhenClosed) {
    ProbeClient client;
    EXPECT_EQ(client.CloseConnection(), UTE_SUCCESS);
    EXPECT_EQ(client.CloseConnection(), UTE_SUCCESS);
}

TEST(ClientClose, LetsTheObjectConnectAgain) {
    peers::Peer peer(peers::silent());
    ProbeClient client;
    for (int round = 1; round <= 3; ++round) {
        ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
        ASSERT_EQ(client.CloseConnection(), UTE_SUCCESS);
        ASSERT_EQ(peer.waitForServed(round), round);
    }
}

TEST(ClientClose, ReportsAFailedShutdownAndClosesAnyway) {
    peers::RefusingPort port;
    ProbeClient client;
    char loopback[] = "127.0.0.1";
    ASSERT_EQ(client.ConnectBound(0, port.port(), loopback, loopback, AF_INET, SOCK_STREAM),
              UTE_SOCK_CONNECT_FAILED);
    const SOCKET socket = client.GetSocket();
    EXPECT_EQ(client.CloseConnection(), UTE_ERROR);
    expectForgotten(client);
    EXPECT_EQ(::closesocket(socket), SOCKET_ERROR) << "closed already";
}

TEST(ClientClose, ReportsAFailedClose) {
    peers::Peer peer(peers::silent());
    ProbeClient client;
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    ::closesocket(client.GetSocket());
    EXPECT_EQ(client.CloseConnection(), UTE_ERROR);
    expectForgotten(client);
}

TEST(ClientClose, ShutsDownAStreamFirst) {
    peers::Peer peer(peers::silent());
    ProbeClient client;
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    const UniqueSocket other = otherHandleOf(client.GetSocket());
    ASSERT_EQ(::send(other.get(), "x", 1, 0), 1);
    EXPECT_EQ(client.CloseConnection(), UTE_SUCCESS);
    EXPECT_EQ(peer.waitForServed(1), 1) << "the peer sees the end";
    EXPECT_EQ(::send(other.get(), "x", 1, 0), SOCKET_ERROR);
}

TEST(ClientClose, DoesNotShutDownADatagramSocket) {
    const peers::WinsockSession winsock;
    const UniqueSocket peer = peers::bindToLoopback(SOCK_DGRAM);
    ProbeClient client;
    char loopback[] = "127.0.0.1";
    const auto port = static_cast<unsigned int>(peers::portOf(peer));
    ASSERT_EQ(client.Connect(port, loopback, -1, AF_INET, SOCK_DGRAM), UTE_SUCCESS);
    const UniqueSocket other = otherHandleOf(client.GetSocket());
    ASSERT_EQ(::send(other.get(), "x", 1, 0), 1);
    EXPECT_EQ(client.CloseConnection(), UTE_SUCCESS);
    expectForgotten(client);
    EXPECT_EQ(::send(other.get(), "x", 1, 0), 1);
}

TEST(ClientClose, ClosesTheListeningSocketToo) {
    ProbeClient client;
    ASSERT_EQ(client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
    const auto port = static_cast<unsigned int>(client.GetAcceptPort());
    client.CloseConnection();
    expectForgotten(client);
    ProbeClient other;
    EXPECT_EQ(other.Connect(port, "127.0.0.1", -1), UTE_SOCK_CONNECT_FAILED);
    EXPECT_EQ(client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
}

TEST(ClientClose, HappensWhenTheObjectIsDestroyed) {
    peers::Peer peer(peers::silent());
    auto client = std::make_unique<ProbeClient>();
    ASSERT_EQ(client->connectTo(peer.port()), UTE_SUCCESS);
    const SOCKET socket = client->GetSocket();
    client.reset();
    EXPECT_EQ(peer.waitForServed(1), 1);
    EXPECT_EQ(::closesocket(socket), SOCKET_ERROR);
}

TEST(ClientClose, BalancesTheStartOfWinsock) {
    { CUT_WSClient client; }
    EXPECT_EQ(::WSACleanup(), SOCKET_ERROR);
    EXPECT_EQ(::WSAGetLastError(), WSANOTINITIALISED);
}

class ClientReset : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS); }

    peers::Peer m_peer{peers::echo()};
    ProbeClient m_client;
};

TEST_F(ClientReset, ForgetsTheSocketsWithoutClosingThem) {
    ASSERT_EQ(m_client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
    const UniqueSocket leaked(m_client.GetSocket());
    m_client.codes.clear();
    EXPECT_EQ(m_client.Reset(), UTE_SUCCESS);
    EXPECT_EQ(m_client.codes, Codes{0});
    expectForgotten(m_client);
    EXPECT_EQ(::send(leaked.get(), "still", 5, 0), 5);
    char buffer[8];
    EXPECT_EQ(::recv(leaked.get(), buffer, sizeof buffer, 0), 5);
    EXPECT_EQ(m_client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS)
        << "the listening socket is forgotten too";
}

TEST_F(ClientReset, LetsTheObjectConnectAgain) {
    const UniqueSocket leaked(m_client.GetSocket());
    m_client.Reset();
    EXPECT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
}

TEST_F(ClientReset, KeepsOneStartOfWinsock) {
    const UniqueSocket leaked(m_client.GetSocket());
    m_client.Reset();
    EXPECT_EQ(m_client.Reset(), UTE_SUCCESS);
    EXPECT_EQ(::WSACleanup(), 0) << "the peer's or the client's";
    EXPECT_EQ(::WSACleanup(), 0) << "the other";
    EXPECT_EQ(::WSACleanup(), SOCKET_ERROR);
    WSADATA data{};
    ::WSAStartup(MAKEWORD(2, 2), &data);
    ::WSAStartup(MAKEWORD(2, 2), &data);
}

}  // namespace
