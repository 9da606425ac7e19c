#include <gtest/gtest.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

class ClientListen : public testing::Test {
  protected:
    int listen(unsigned short port = 0) {
        return m_client.WaitForConnect(port, 5, AF_INET, ::inet_addr("127.0.0.1"));
    }
    void listenAndAccept(ProbeClient& other) {
        ASSERT_EQ(listen(), UTE_SUCCESS);
        connect(other);
        ASSERT_EQ(m_client.AcceptConnection(), UTE_SUCCESS);
    }
    void connect(ProbeClient& other) {
        ASSERT_EQ(other.connectTo(static_cast<unsigned int>(m_client.GetAcceptPort())),
                  UTE_SUCCESS);
    }

    ProbeClient m_client;
    ProbeClient m_other;
    ProbeClient m_another;
};

TEST_F(ClientListen, ListensOnTheBoundPort) {
    EXPECT_EQ(listen(), UTE_SUCCESS);
    EXPECT_NE(m_client.GetAcceptPort(), 0);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    connect(m_other);
}

TEST_F(ClientListen, RefusesToListenTwice) {
    ASSERT_EQ(listen(), UTE_SUCCESS);
    EXPECT_EQ(listen(), UTE_SOCK_ALREADY_OPEN);
}

TEST_F(ClientListen, ReportsASocketThatCannotBeMade) {
    m_client.createFails = true;
    EXPECT_EQ(listen(), UTE_SOCK_CREATE_FAILED);
}

TEST_F(ClientListen, MakesTheSocketOfItsProtocol) {
    struct : ProbeClient {
        void setProtocol(int protocol) { m_protocol = protocol; }
    } client;
    client.setProtocol(IPPROTO_UDP);  // has no streams
    EXPECT_EQ(client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")),
              UTE_SOCK_CREATE_FAILED);
    client.setProtocol(IPPROTO_TCP);
    EXPECT_EQ(client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
}

TEST_F(ClientListen, LeavesTheSocketWhenThePortIsTaken) {
    peers::Peer peer(peers::silent());
    const auto taken = static_cast<unsigned short>(peer.port());
    EXPECT_EQ(listen(taken), UTE_SOCK_BIND_FAILED);
    EXPECT_EQ(m_client.GetAcceptPort(), 0);
    EXPECT_EQ(listen(), UTE_SOCK_ALREADY_OPEN);
    m_client.CloseConnection();
    EXPECT_EQ(listen(), UTE_SUCCESS);
}

TEST_F(ClientListen, ReportsASocketThatCannotListen) {
    struct : ProbeClient {
        int CreateSocket(SOCKET& s, int family, int, int protocol) override {
            return CUT_WSClient::CreateSocket(s, family, SOCK_DGRAM, protocol);
        }
    } client;
    EXPECT_EQ(client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")),
              UTE_SOCK_LISTEN_ERROR);
    EXPECT_EQ(client.GetAcceptPort(), 0);
}

TEST_F(ClientListen, AppliesTheTimeOutsToTheOtherSocket) {
    ASSERT_EQ(listen(), UTE_SUCCESS);
    // Socket made, two time-outs on no socket, the result.
    EXPECT_EQ(m_client.codes, (std::vector<int>{0, -1, -1, 0}));
}

TEST_F(ClientListen, WaitsForAPeerToAccept) {
    ASSERT_EQ(listen(), UTE_SUCCESS);
    EXPECT_EQ(m_client.WaitForAccept(0), UTE_ERROR);
    connect(m_other);
    EXPECT_EQ(m_client.WaitForAccept(10), UTE_SUCCESS);
}

TEST_F(ClientListen, CannotWaitWithoutListening) {
    EXPECT_EQ(m_client.WaitForAccept(0), UTE_ERROR);
    EXPECT_EQ(m_client.AcceptConnection(), UTE_ERROR);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientListen, AcceptFillsAddressAndPorts) {
    listenAndAccept(m_other);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    EXPECT_EQ(m_client.GetRemotePort(), m_other.GetLocalPort());
    EXPECT_EQ(m_client.GetLocalPort(), m_client.GetAcceptPort());
    EXPECT_EQ(::ntohs(m_client.getsockAddr().sin_port), m_other.GetLocalPort());
}

TEST_F(ClientListen, AcceptedConnectionCarriesDataAndTheTimeOuts) {
    m_client.setRecvTimeOut(4000);
    listenAndAccept(m_other);
    ASSERT_EQ(m_other.Send("hello", 5), 5);
    char buffer[8];
    EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 10), 5);
    int value = 0;
    m_client.GetSocketOption(SO_RCVTIMEO, &value);
    EXPECT_EQ(value, 4000);
}

TEST_F(ClientListen, AcceptingAgainReplacesTheConnection) {
    listenAndAccept(m_other);
    connect(m_another);
    EXPECT_EQ(m_client.AcceptConnection(), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetRemotePort(), m_another.GetLocalPort());
    ASSERT_TRUE(m_other.hasArrived());
    EXPECT_EQ(m_other.IsConnected(), 0) << "the first connection is closed";
    EXPECT_EQ(m_another.IsConnected(), 1);
}

TEST_F(ClientListen, AcceptsNothingWhenTheOldConnectionCannotBeClosed) {
    listenAndAccept(m_other);
    connect(m_another);
    ::closesocket(m_client.GetSocket());
    EXPECT_EQ(m_client.AcceptConnection(), UTE_ERROR);
    EXPECT_EQ(m_client.WaitForAccept(10), UTE_SUCCESS) << "the next peer still waits";
    EXPECT_EQ(m_client.AcceptConnection(), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetRemotePort(), m_another.GetLocalPort());
}

}  // namespace
