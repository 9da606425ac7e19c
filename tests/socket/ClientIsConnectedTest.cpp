// What a client alone says about its connection.
#include "tests/socket/EndTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using ClientIsConnected = Client;

TEST_F(ClientIsConnected, PassesEachChangeOfTheModeThroughTheFunnel) {
    EXPECT_EQ(m_end.IsConnected(), 1);
    // Non-blocking, then blocking when the peek would block and again at the end.
    EXPECT_THAT(m_end.codes, ElementsAre(0, 0, 0));
    ProbeClient neverOpened;
    EXPECT_EQ(neverOpened.IsConnected(), 0);
    EXPECT_THAT(neverOpened.codes, IsEmpty()) << "neither mode nor funnel is touched";
}

TEST_F(ClientIsConnected, IsFalseOnceThePeerHasReset) {
    peers::ResettingPort port;
    ProbeClient client;
    ASSERT_EQ(client.connectTo(port.port()), UTE_SUCCESS);
    EXPECT_EQ(client.IsConnected(), 1);
    port.resetConnections();
    ASSERT_TRUE(client.hasArrived());
    EXPECT_EQ(client.IsConnected(), 0);
    EXPECT_EQ(client.GetBlockingMode(), 0);
}

// Later receives fail on one system, and find the end on another.
TEST_F(ClientIsConnected, IsFalseAfterTheResetWasReportedToo) {
    peers::ResettingPort port;
    ProbeClient client;
    ASSERT_EQ(client.connectTo(port.port()), UTE_SUCCESS);
    port.resetConnections();
    ASSERT_TRUE(client.hasArrived());
    char text[10] = "";
    EXPECT_EQ(client.Receive(text, sizeof text, 0), SOCKET_ERROR);
    EXPECT_LE(client.Receive(text, sizeof text, 0), 0);
    EXPECT_EQ(client.ReceiveLine(text, sizeof text, 0), 0);
    EXPECT_EQ(client.IsConnected(), 0);
    EXPECT_EQ(client.IsConnected(), 0);
}

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
TEST_F(ClientIsConnected, IsTrueForASocketThatNeverConnected) {
    const NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    m_end.attach(socket.get());
    EXPECT_EQ(m_end.IsConnected(), 1);
    EXPECT_THAT(m_end.codes, ElementsAre(0, 0));
    EXPECT_EQ(m_end.GetBlockingMode(), 0);
}

}  // namespace
