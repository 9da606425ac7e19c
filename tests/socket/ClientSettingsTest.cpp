#include <cstring>

#include "tests/socket/EndTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ClientSettings : public testing::Test {
  protected:
    void connect() {
        ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }

    peers::Peer m_peer{peers::silent()};
    ProbeClient m_client;
};

TEST_F(ClientSettings, StartClosedAndEmpty) {
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
    EXPECT_EQ(m_client.GetAcceptPort(), 0);
    EXPECT_STREQ(m_client.getszAddress(), "");
    EXPECT_EQ(m_client.getsockAddr().sin_port, 0);
    EXPECT_EQ(m_client.getsockAddr().sin_addr.s_addr, 0u);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_EQ(m_client.GetReceiveTimeOut(), 30000);
    EXPECT_EQ(m_client.GetSendTimeOut(), 30000);
}

TEST_F(ClientSettings, OfAClosedSocketFailAndKeepTheirValues) {
    long long value = 0;
    EXPECT_EQ(m_client.SetMaxReceive(20000), SOCKET_ERROR);
    EXPECT_EQ(m_client.SetMaxSend(30000), SOCKET_ERROR);
    EXPECT_EQ(m_client.GetMaxReceive(), -1);
    EXPECT_EQ(m_client.GetMaxSend(), -1);
    EXPECT_EQ(m_client.GetSocketOption(SO_TYPE, &value), SOCKET_ERROR);
    EXPECT_EQ(m_client.SetSocketOption(SO_KEEPALIVE, &value), SOCKET_ERROR);
    EXPECT_THAT(m_client.codes, IsEmpty());
    EXPECT_EQ(m_client.SetReceiveTimeOut(1500), SOCKET_ERROR);
    EXPECT_EQ(m_client.SetSendTimeOut(2500), SOCKET_ERROR);
    EXPECT_EQ(m_client.SetBlockingMode(1), UTE_ERROR);
    EXPECT_THAT(m_client.codes, ElementsAre(-1, -1, UTE_ERROR));
    EXPECT_EQ(m_client.GetReceiveTimeOut(), 30000);
    EXPECT_EQ(m_client.GetSendTimeOut(), 30000);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
}

TEST_F(ClientSettings, OfAnOpenSocketPassTheFunnelUnlessTheyAreBufferSizesOrOnlyStored) {
    connect();
    m_client.setRecvTimeOut(1234);
    m_client.setSendTimeOut(4321);
    EXPECT_EQ(m_client.GetReceiveTimeOut(), 1234);
    EXPECT_EQ(m_client.GetSendTimeOut(), 4321);
    EXPECT_EQ(m_client.optionOf(SO_RCVTIMEO), 30000);
    EXPECT_EQ(m_client.optionOf(SO_SNDTIMEO), 30000);
    EXPECT_EQ(m_client.SetMaxReceive(20000), 0);
    EXPECT_EQ(m_client.SetMaxSend(30000), 0);
    EXPECT_EQ(m_client.GetMaxReceive(), m_client.optionOf(SO_RCVBUF));
    EXPECT_EQ(m_client.GetMaxSend(), m_client.optionOf(SO_SNDBUF));
    EXPECT_GE(m_client.GetMaxReceive(), 20000);
    EXPECT_GE(m_client.GetMaxSend(), 30000);
    EXPECT_NE(m_client.GetMaxReceive(), m_client.GetMaxSend());
    EXPECT_THAT(m_client.codes, IsEmpty());
    EXPECT_EQ(m_client.SetReceiveTimeOut(1500), 0);
    EXPECT_EQ(m_client.SetSendTimeOut(2500), 0);
    EXPECT_EQ(m_client.GetReceiveTimeOut(), 1500);
    EXPECT_EQ(m_client.GetSendTimeOut(), 2500);
    for (const int mode : {1, 0}) {
        EXPECT_EQ(m_client.SetBlockingMode(mode), UTE_SUCCESS);
        EXPECT_EQ(m_client.GetBlockingMode(), mode);
    }
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0, 0, 0));
}

TEST_F(ClientSettings, AnOptionIsReadIntoFourBytes) {
    connect();
    unsigned char value[8];
    std::memset(value, 0xCC, sizeof value);
    EXPECT_EQ(m_client.GetSocketOption(SO_TYPE, value), 0);
    EXPECT_THAT(value, ElementsAre(SOCK_STREAM, 0, 0, 0, 0xCC, 0xCC, 0xCC, 0xCC));
    EXPECT_THAT(m_client.codes, IsEmpty());
}

TEST_F(ClientSettings, ResultsAreWhatTheFunnelReturns) {
    struct Renaming : CUT_WSClient {
        int OnError(int code) override { return code + 1000; }
    } client;
    EXPECT_EQ(client.SetBlockingMode(1), 1001);
    EXPECT_EQ(client.SetReceiveTimeOut(1), 999);
    EXPECT_EQ(client.CloseConnection(), 1000);
    EXPECT_EQ(client.IsConnected(), 0);
}

using ClientIsConnected = Client;

// One byte is too small for the peek of a longer datagram.
TEST_F(ClientIsConnected, IsFalseAndNonBlockingWithALongDatagramWaiting) {
    char loopback[] = "127.0.0.1";
    ProbeClient client;
    ASSERT_EQ(client.CreateUDPSocket(0, 0, loopback, loopback), UTE_SUCCESS);
    const sockaddr_in self = port::localAddress(client.GetSocket());
    ASSERT_EQ(port::sendTo(client.GetSocket(), "long", 4, self), 4);
    ASSERT_TRUE(client.hasArrived());
    EXPECT_EQ(client.IsConnected(), 0);
    EXPECT_EQ(client.GetBlockingMode(), 1);
}

// Its peek fails as "not connected", which is none of the errors that tell a dead connection.
// Receives fail on one system, and find the end on another.
TEST_F(ClientIsConnected, IsFalseAfterTheResetWasReportedToo) {
    peers::ResettingPort port;
    ProbeClient client;
    ASSERT_EQ(client.connectTo(port.port()), UTE_SUCCESS);
    port.resetConnections();
    ASSERT_TRUE(client.hasArrived());
    char text[10] = "";
    for (int i = 0; i < 2; ++i) EXPECT_LE(client.Receive(text, sizeof text, 0), 0);
    EXPECT_EQ(client.ReceiveLine(text, sizeof text, 0), 0);
    EXPECT_EQ(client.IsConnected(), 0);
    EXPECT_EQ(client.IsConnected(), 0);
}

TEST_F(ClientIsConnected, IsTrueForASocketThatNeverConnected) {
    const NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    m_end.attach(socket.get());
    EXPECT_EQ(m_end.IsConnected(), 1);
    EXPECT_THAT(m_end.codes, ElementsAre(0, 0));
    EXPECT_EQ(m_end.GetBlockingMode(), 0);
}

}  // namespace
