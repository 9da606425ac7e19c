#include <gmock/gmock.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/Probes.h"

namespace {

using testing::ElementsAre;

// Makes its sockets in another way.
class OddClient : public ProbeClient {
  public:
    int type = SOCK_STREAM;
    void setProtocol(int protocol) { m_protocol = protocol; }
    int CreateSocket(SOCKET& s, int family, int, int protocol) override {
        return ProbeClient::CreateSocket(s, family, type, protocol);
    }
};

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

    OddClient m_client;
    ProbeClient m_other;
    ProbeClient m_another;
};

TEST_F(ClientListen, ReportsASocketThatCannotBeCreatedOrCannotListen) {
    m_client.createFails = true;
    EXPECT_EQ(listen(), UTE_SOCK_CREATE_FAILED);
    m_client.createFails = false;
    m_client.type = SOCK_DGRAM;
    EXPECT_EQ(listen(), UTE_SOCK_LISTEN_ERROR);
    EXPECT_EQ(m_client.GetAcceptPort(), 0);
}

TEST_F(ClientListen, CreatesTheSocketOfItsProtocol) {
    m_client.setProtocol(IPPROTO_UDP);  // has no streams
    EXPECT_EQ(listen(), UTE_SOCK_CREATE_FAILED);
    m_client.setProtocol(IPPROTO_TCP);
    EXPECT_EQ(listen(), UTE_SUCCESS);
}

TEST_F(ClientListen, LeavesTheSocketWhenThePortIsTaken) {
    const peers::RefusingPort taken;
    EXPECT_EQ(listen(static_cast<unsigned short>(taken.port())), UTE_SOCK_BIND_FAILED);
    EXPECT_EQ(m_client.GetAcceptPort(), 0);
    EXPECT_EQ(listen(), UTE_SOCK_ALREADY_OPEN);
    m_client.CloseConnection();
    EXPECT_EQ(listen(), UTE_SUCCESS);
}

TEST_F(ClientListen, WaitsForAPeerToAccept) {
    EXPECT_EQ(m_client.WaitForAccept(0), UTE_ERROR) << "it does not listen";
    EXPECT_EQ(m_client.AcceptConnection(), UTE_ERROR);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    ASSERT_EQ(listen(), UTE_SUCCESS);
    EXPECT_EQ(m_client.WaitForAccept(0), UTE_ERROR);
    connect(m_other);
    EXPECT_EQ(m_client.WaitForAccept(10), UTE_SUCCESS);
}

TEST_F(ClientListen, AcceptedConnectionHasItsAddressAndTheTimeOutsAndCarriesData) {
    m_client.setRecvTimeOut(4000);
    listenAndAccept(m_other);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    EXPECT_EQ(m_client.GetRemotePort(), m_other.GetLocalPort());
    EXPECT_EQ(m_client.GetLocalPort(), m_client.GetAcceptPort());
    EXPECT_EQ(ntohs(m_client.getsockAddr().sin_port), m_other.GetLocalPort());
    EXPECT_EQ(m_client.optionOf(SO_RCVTIMEO), 4000);
    ASSERT_EQ(m_other.Send("hello", 5), 5);
    char buffer[8];
    EXPECT_EQ(m_client.Receive(buffer, sizeof buffer, 10), 5);
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
    port::closeSocket(m_client.GetSocket());
    EXPECT_EQ(m_client.AcceptConnection(), UTE_ERROR);
    EXPECT_EQ(m_client.WaitForAccept(10), UTE_SUCCESS) << "the next peer still waits";
    EXPECT_EQ(m_client.AcceptConnection(), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetRemotePort(), m_another.GetLocalPort());
}

}  // namespace
