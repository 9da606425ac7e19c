#include <gtest/gtest.h>

#include <string>

#include "tests/socket/SendingClient.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/TempFile.h"

namespace {

using ClientSendSource = SendingClient;

TEST_F(ClientSendSource, SendsAllInPiecesOf255Bytes) {
    ScriptedSource source(patternOf(600));
    EXPECT_EQ(m_client.Send(source), UTE_SUCCESS);
    EXPECT_EQ(m_client.codes, std::vector<int>{0});
    EXPECT_EQ(m_client.sentTotals, (std::vector<long>{255, 510, 600}));
    EXPECT_EQ(source.asked, (std::vector<unsigned int>{255, 255, 255, 255}));
    EXPECT_EQ(source.opened, std::vector<int>{OM_READ});
    EXPECT_EQ(source.closed, 1);
    EXPECT_EQ(arrived(), patternOf(600));
}

TEST_F(ClientSendSource, SendsNothingOfAnEmptySource) {
    ScriptedSource source;
    EXPECT_EQ(m_client.Send(source), UTE_SUCCESS);
    EXPECT_EQ(source.opened, std::vector<int>{OM_READ});
    EXPECT_EQ(source.closed, 1);
    EXPECT_EQ(m_client.sends, 0);
}

TEST_F(ClientSendSource, NeedsAnOpenSocket) {
    m_client.CloseConnection();
    ScriptedSource source("x");
    EXPECT_EQ(m_client.Send(source), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(source.opened, std::vector<int>{});
}

TEST_F(ClientSendSource, ReportsASourceThatDoesNotOpen) {
    ScriptedSource source("x");
    source.openResult = -1;
    EXPECT_EQ(m_client.Send(source), UTE_DS_OPEN_FAILED);
    EXPECT_EQ(m_client.codes, std::vector<int>{UTE_DS_OPEN_FAILED});
    EXPECT_EQ(source.closed, 0);
}

TEST_F(ClientSendSource, ReportsAPieceThatIsNotSent) {
    ScriptedSource source(patternOf(600));
    m_client.failingSend = 1;
    EXPECT_EQ(m_client.Send(source), UTE_SOCK_SEND_ERROR);
    EXPECT_EQ(m_client.sentTotals, std::vector<long>{255});
    EXPECT_EQ(source.closed, 1);
    EXPECT_EQ(arrived(), patternOf(600).substr(0, 255));
}

TEST_F(ClientSendSource, CountsTheBytesAskedNotThoseSent) {
    struct : ProbeClient {
        using CUT_WSClient::Send;
        int Send(const char*, int) override { return 1; }
    } client;
    ASSERT_EQ(client.connectTo(m_peer.port()), UTE_SUCCESS);
    ScriptedSource source(patternOf(300));
    EXPECT_EQ(client.Send(source), UTE_SUCCESS);
    EXPECT_EQ(client.sentTotals, (std::vector<long>{255, 300}));
}

TEST_F(ClientSendSource, StopsWhenTheStatusSaysSo) {
    ScriptedSource source(patternOf(600));
    m_client.sendStatus = 0;
    EXPECT_EQ(m_client.Send(source), UTE_ABORTED);
    EXPECT_EQ(m_client.sentTotals, std::vector<long>{255});
    EXPECT_EQ(source.closed, 1);
}

TEST_F(ClientSendSource, StopsWhenAborted) {
    ScriptedSource source(patternOf(600));
    m_client.abortAfter = 1;
    EXPECT_EQ(m_client.Send(source), UTE_ABORTED);
    EXPECT_EQ(m_client.sentTotals, (std::vector<long>{255, 510}));
}

TEST_F(ClientSendSource, AbortStopsThroughTheBaseStatusToo) {
    struct : CUT_WSClient {
        int IsAborted() override { return ++asked; }
        int asked = 0;
    } client;
    ASSERT_EQ(client.Connect(m_peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
    ScriptedSource source(patternOf(600));
    EXPECT_EQ(client.Send(source), UTE_ABORTED);
    EXPECT_EQ(client.asked, 1) << "the base status asked, and its 0 is enough";
}

TEST_F(ClientSendSource, SendsAFile) {
    const TempFolder folder;
    const std::wstring file = folder.file(L"sent", patternOf(5000));
    EXPECT_EQ(m_client.SendFile(file.c_str()), UTE_SUCCESS);
    EXPECT_EQ(arrived(), patternOf(5000));
}

TEST_F(ClientSendSource, ReportsAMissingFile) {
    const TempFolder folder;
    EXPECT_EQ(m_client.SendFile(folder.path(L"missing").c_str()), UTE_DS_OPEN_FAILED);
    EXPECT_FALSE(folder.has(L"missing"));
    EXPECT_EQ(arrived(), "");
}

TEST_F(ClientSendSource, SendsAFileThroughTheOverriddenSend) {
    struct : CUT_WSClient {
        using CUT_WSClient::Send;
        int Send(CUT_DataSource&) override { return 4711; }
    } client;
    EXPECT_EQ(client.SendFile(L"any"), 4711);
}

}  // namespace
