#include <gtest/gtest.h>

#include <string>

#include "tests/socket/SendingClient.h"

namespace {

using ClientSendLine = SendingClient;

TEST_F(ClientSendLine, EndsEachPieceWithALineEnd) {
    EXPECT_EQ(m_client.SendAsLine("abcdefgh", 8, 3), 8);
    EXPECT_EQ(m_client.sends, 6);
    EXPECT_EQ(arrived(), "abc\r\ndef\r\ngh\r\n");
}

TEST_F(ClientSendLine, AddsNothingBehindAFullLine) {
    EXPECT_EQ(m_client.SendAsLine("abcdef, not sent", 6, 3), 6);
    EXPECT_EQ(arrived(), "abc\r\ndef\r\n");
}

TEST_F(ClientSendLine, SendsAShortTextAsOneLine) {
    EXPECT_EQ(m_client.SendAsLine("abc", 3, 80), 3);
    EXPECT_EQ(arrived(), "abc\r\n");
}

TEST_F(ClientSendLine, TakesTheStringsLengthForANegativeOne) {
    EXPECT_EQ(m_client.SendAsLine("abcd", -1, 2), 4);
    EXPECT_EQ(arrived(), "ab\r\ncd\r\n");
}

TEST_F(ClientSendLine, SendsNoMoreThanTheLength) {
    EXPECT_EQ(m_client.SendAsLine("abcdef", 3, 2), 3);
    EXPECT_EQ(arrived(), "ab\r\nc\r\n");
}

TEST_F(ClientSendLine, SendsNothingOfNothing) {
    EXPECT_EQ(m_client.SendAsLine("abc", 0, 3), 0);
    EXPECT_EQ(m_client.SendAsLine("", -1, 3), 0);
    EXPECT_EQ(m_client.sends, 0);
}

TEST_F(ClientSendLine, SendsNothingInLinesOfNoLength) {
    EXPECT_EQ(m_client.SendAsLine("abc", 3, 0), 0);
    EXPECT_EQ(m_client.SendAsLine("abc", 3, -1), 0);
    EXPECT_EQ(m_client.sends, 0);
}

TEST_F(ClientSendLine, TakesAnyLineLength) {
    EXPECT_EQ(m_client.SendAsLine("abc", 3, 0x7FFFFFFF), 3);
    EXPECT_EQ(arrived(), "abc\r\n");
}

TEST_F(ClientSendLine, StopsBeforeAPieceWhenAborted) {
    m_client.abortAfter = 2;
    EXPECT_EQ(m_client.SendAsLine("abcdefgh", 8, 3), 6);
    EXPECT_EQ(arrived(), "abc\r\ndef\r\n");
}

TEST_F(ClientSendLine, StopsAtOnceWhenAbortedBefore) {
    m_client.abortAfter = 0;
    EXPECT_EQ(m_client.SendAsLine("abc", 3, 3), 0);
    EXPECT_EQ(m_client.sends, 0);
}

TEST_F(ClientSendLine, StopsWhenAPieceIsNotSent) {
    m_client.failingSend = 2;
    EXPECT_EQ(m_client.SendAsLine("abcdefgh", 8, 3), 3);
    EXPECT_EQ(arrived(), "abc\r\n");
}

TEST_F(ClientSendLine, CountsAPieceWhoseLineEndIsNotSent) {
    m_client.failingSend = 1;
    EXPECT_EQ(m_client.SendAsLine("abcdefgh", 8, 3), 3);
    EXPECT_EQ(arrived(), "abc");
}

}  // namespace
