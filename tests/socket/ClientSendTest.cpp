#include <gtest/gtest.h>

#include <string>

#include "tests/socket/SendingClient.h"
#include "tests/support/Gate.h"

namespace {

using ClientSend = SendingClient;

TEST_F(ClientSend, SendsTheBytesGiven) {
    m_client.codes.clear();
    EXPECT_EQ(m_client.Send("ab\0cd", 5), 5);
    EXPECT_EQ(m_client.codes, std::vector<int>{}) << "counts do not pass the funnel";
    EXPECT_EQ(arrived(), std::string("ab\0cd", 5));
}

TEST_F(ClientSend, SendsNoMoreThanTheLength) {
    EXPECT_EQ(m_client.Send("abcdef", 2), 2);
    EXPECT_EQ(arrived(), "ab");
}

TEST_F(ClientSend, TakesTheStringsLengthForZeroAndBelow) {
    EXPECT_EQ(m_client.Send("zero", 0), 4);
    EXPECT_EQ(m_client.Send("negative", -5), 8);
    EXPECT_EQ(arrived(), "zeronegative");
}

TEST_F(ClientSend, SendsNothingOfAnEmptyString) {
    EXPECT_EQ(m_client.Send("", 0), 0);
    EXPECT_EQ(m_client.Send("", -1), 0);
    EXPECT_EQ(arrived(), "");
}

TEST_F(ClientSend, GivesZeroOnAnError) {
    m_client.CloseConnection();
    EXPECT_EQ(m_client.Send("lost", 4), 0);
}

TEST_F(ClientSend, WaitForSendFindsAnIdleSocketReady) {
    m_client.codes.clear();
    EXPECT_EQ(m_client.WaitForSend(0, 0), UTE_SUCCESS);
    EXPECT_EQ(m_client.codes, std::vector<int>{0});
}

TEST_F(ClientSend, WaitForSendFindsAFullSocketNotReady) {
    CUT_WSClient client;
    Gate gate;
    peers::Peer stuck([&](peers::Connection&) { gate.pass(); });
    ASSERT_EQ(client.Connect(stuck.port(), "127.0.0.1", 10), UTE_SUCCESS);
    ASSERT_EQ(client.SetBlockingMode(1), UTE_SUCCESS);
    const std::string block(1 << 16, 'x');
    for (int i = 0; i < 1000 && client.Send(block.data(), 1 << 16) > 0; ++i) {
    }
    EXPECT_EQ(client.WaitForSend(0, 1000), UTE_ERROR);
    gate.open();
}

TEST_F(ClientSend, WaitForSendFailsOnAClosedSocket) {
    m_client.CloseConnection();
    EXPECT_EQ(m_client.WaitForSend(0, 0), UTE_ERROR);
}

}  // namespace
