#include <gtest/gtest.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

class ClientReceive : public testing::Test {
  protected:
    void connectTo(const peers::Peer& peer) {
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }

    ProbeClient m_client;
    char m_buffer[512] = "";
};

TEST_F(ClientReceive, TakesWhatHasCome) {
    peers::Peer peer(peers::sending("hello"));
    connectTo(peer);
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 10), 5);
    EXPECT_EQ(std::string(m_buffer, 5), "hello");
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{10});
}

TEST_F(ClientReceive, TakesNoMoreThanTheLength) {
    peers::Peer peer(peers::sending("hello"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.Receive(m_buffer, 2, 10), 2);
    EXPECT_EQ(m_client.Receive(m_buffer, 10, 10), 3);
}

TEST_F(ClientReceive, DoesNotAskForAWaitWithoutATimeOut) {
    peers::Peer peer(peers::sending("hello"));
    connectTo(peer);
    EXPECT_EQ(m_client.Receive(m_buffer, 2, 0), 2);
    EXPECT_EQ(m_client.Receive(m_buffer, 3, -1), 3);
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{});
}

TEST_F(ClientReceive, GivesZeroWhenTheOverriddenWaitSaysSo) {
    peers::Peer peer(peers::sending("hello"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    m_client.isDeaf = true;
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 10), 0);
    EXPECT_TRUE(m_client.IsDataWaiting()) << "nothing was read";
}

TEST_F(ClientReceive, GivesZeroAtAClose) {
    peers::Peer peer(peers::sendingAndClosing());
    connectTo(peer);
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 10), 0);
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 0), 0);
}

TEST_F(ClientReceive, GivesMinusOneOnAnError) {
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 0), -1) << "not open";
    peers::Peer peer(peers::sending("unread"));
    connectTo(peer);
    ASSERT_EQ(::shutdown(m_client.GetSocket(), SD_RECEIVE), 0);
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 0), -1) << "shut down";
}

TEST_F(ClientReceive, EndsAtTheSocketsOwnTimeOut) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    m_client.SetReceiveTimeOut(50);
    EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 0), -1);
}

TEST_F(ClientReceive, WaitForReceiveTellsWhetherTheSocketIsReadable) {
    peers::Peer peer(peers::echo());
    connectTo(peer);
    EXPECT_EQ(m_client.WaitForReceive(0, 1000), UTE_ERROR);
    m_client.Send("x", 1);
    EXPECT_EQ(m_client.WaitForReceive(10, 0), UTE_SUCCESS);
    EXPECT_EQ(m_client.codes, (std::vector<int>{1, 0}));
}

TEST_F(ClientReceive, WaitForReceiveFailsOnAClosedSocket) {
    EXPECT_EQ(m_client.WaitForReceive(0, 0), UTE_ERROR);
}

TEST_F(ClientReceive, DataWaitsUntilItIsRead) {
    peers::Peer peer(peers::echo());
    EXPECT_FALSE(m_client.IsDataWaiting()) << "not open";
    connectTo(peer);
    EXPECT_FALSE(m_client.IsDataWaiting());
    m_client.Send("x", 1);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_TRUE(m_client.IsDataWaiting());
    m_client.Receive(m_buffer, 1, 0);
    EXPECT_FALSE(m_client.IsDataWaiting());
}

TEST_F(ClientReceive, NoDataWaitsAtAClose) {
    peers::Peer peer(peers::sendingAndClosing());
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_FALSE(m_client.IsDataWaiting());
}

TEST_F(ClientReceive, ClearsInPiecesOf256BytesThroughTheSlot) {
    peers::Peer peer(peers::sendingAndClosing(std::string(600, 'x')));
    connectTo(peer);
    ASSERT_EQ(peer.waitForServed(1), 1);
    ASSERT_TRUE(m_client.hasArrived());
    m_client.codes.clear();
    EXPECT_EQ(m_client.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_EQ(m_client.receives, 3);
    EXPECT_EQ(m_client.codes, std::vector<int>{0});
    EXPECT_FALSE(m_client.IsDataWaiting());
}

TEST_F(ClientReceive, ClearingStopsWhenNothingCanBeReceived) {
    struct : ProbeClient {
        int Receive(char*, int, int) override { return ++receives < 3 ? 1 : 0; }
    } client;
    peers::Peer peer(peers::sending("never read"));
    ASSERT_EQ(client.connectTo(peer.port()), UTE_SUCCESS);
    ASSERT_TRUE(client.hasArrived());
    EXPECT_EQ(client.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_EQ(client.receives, 3);
}

TEST_F(ClientReceive, ClearsNothingWhenClosed) {
    EXPECT_EQ(m_client.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_EQ(m_client.receives, 0);
}

}  // namespace
