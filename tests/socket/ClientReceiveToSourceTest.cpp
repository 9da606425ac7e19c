#include <gtest/gtest.h>

#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/TempFile.h"

namespace {

class ClientReceiveToSource : public testing::Test {
  protected:
    void connectTo(peers::Peer& peer) {
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }
    // With all of a closing peer's bytes there, so that each piece is as long as it can be.
    void connectAfterTheLastByte(peers::Peer& peer) {
        connectTo(peer);
        ASSERT_EQ(peer.waitForServed(1), 1);
        ::Sleep(50);
    }

    ProbeClient m_client;
    ScriptedSource m_target;
};

TEST_F(ClientReceiveToSource, TakesAllUpToTheCloseInPiecesOf256Bytes) {
    peers::Peer peer(peers::sendingAndClosing(patternOf(600)));
    connectAfterTheLastByte(peer);
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_SUCCESS);
    EXPECT_EQ(m_target.content, patternOf(600));
    EXPECT_EQ(m_target.written, (std::vector<unsigned int>{256, 256, 88}));
    EXPECT_EQ(m_client.receivedTotals, (std::vector<long>{256, 512, 600}));
    EXPECT_EQ(m_target.opened, std::vector<int>{OM_WRITE});
    EXPECT_EQ(m_target.closed, 1);
    EXPECT_EQ(m_client.receives, 4) << "through the slot, the close included";
    EXPECT_EQ(m_client.receiveWaits, (std::vector<long>{10, 10, 10, 10}));
}

TEST_F(ClientReceiveToSource, OpensForAppendingWhenAsked) {
    peers::Peer peer(peers::sendingAndClosing("x"));
    connectTo(peer);
    EXPECT_EQ(m_client.Receive(m_target, OM_APPEND, 10, -1), UTE_SUCCESS);
    EXPECT_EQ(m_target.opened, std::vector<int>{OM_APPEND});
}

TEST_F(ClientReceiveToSource, RefusesAnyOtherOpenType) {
    peers::Peer peer(peers::sendingAndClosing("x"));
    connectTo(peer);
    for (int type : {0, 3, -1}) {
        EXPECT_EQ(m_client.Receive(m_target, static_cast<OpenMsgType>(type), 10, 0),
                  UTE_INVALID_OPEN_TYPE);
    }
    EXPECT_EQ(m_target.opened, std::vector<int>{});
    EXPECT_EQ(m_client.codes, (std::vector<int>{26, 26, 26}));
}

TEST_F(ClientReceiveToSource, NeedsAnOpenSocket) {
    EXPECT_EQ(m_client.Receive(m_target, OM_READ, 10, 0), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(m_target.opened, std::vector<int>{});
}

TEST_F(ClientReceiveToSource, ReportsATargetThatDoesNotOpen) {
    peers::Peer peer(peers::sending("x"));
    connectTo(peer);
    m_target.openResult = -1;
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_DS_OPEN_FAILED);
    EXPECT_EQ(m_target.closed, 0);
}

TEST_F(ClientReceiveToSource, EndsAtTheLimit) {
    peers::Peer peer(peers::sendingAndClosing(patternOf(600)));
    connectAfterTheLastByte(peer);
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 300), UTE_SUCCESS);
    EXPECT_EQ(m_target.content, patternOf(600).substr(0, 300));
    EXPECT_EQ(m_target.written, (std::vector<unsigned int>{256, 44}));
    char rest[600];
    EXPECT_EQ(m_client.Receive(rest, sizeof rest, 10), 300) << "what is behind stays";
}

TEST_F(ClientReceiveToSource, EndsAtTheLimitWithoutTimeOutThoughThePeerIsSilent) {
    peers::Peer peer(peers::sending(patternOf(256)));
    connectTo(peer);
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 0, 256), UTE_SUCCESS);
    EXPECT_EQ(m_target.content, patternOf(256));
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{});
}

TEST_F(ClientReceiveToSource, WaitsBehindTheLimitToo) {
    peers::Peer peer(peers::sending("abc"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 1, 3), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(m_target.content, "abc");
}

TEST_F(ClientReceiveToSource, StopsWhenTheOverriddenWaitSaysSo) {
    peers::Peer peer(peers::sending("abc"));
    connectTo(peer);
    m_client.isDeaf = true;
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(m_target.closed, 1);
    EXPECT_EQ(m_target.content, "");
}

TEST_F(ClientReceiveToSource, ReportsAFailedReceive) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    m_client.SetReceiveTimeOut(50);
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 0, 0), UTE_SOCK_RECEIVE_ERROR);
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(ClientReceiveToSource, ReportsAShortWrite) {
    peers::Peer peer(peers::sendingAndClosing(patternOf(600)));
    connectAfterTheLastByte(peer);
    m_target.writeResult = 255;
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(m_client.receivedTotals, std::vector<long>{});
    EXPECT_EQ(m_target.written, std::vector<unsigned int>{256});
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(ClientReceiveToSource, StopsWhenTheStatusSaysSo) {
    peers::Peer peer(peers::sendingAndClosing(patternOf(600)));
    connectAfterTheLastByte(peer);
    m_client.receiveStatus = 0;
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_ABORTED);
    EXPECT_EQ(m_target.content.size(), 256u);
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(ClientReceiveToSource, StopsWhenAborted) {
    peers::Peer peer(peers::sendingAndClosing(patternOf(600)));
    connectAfterTheLastByte(peer);
    m_client.abortAfter = 1;
    EXPECT_EQ(m_client.Receive(m_target, OM_WRITE, 10, 0), UTE_ABORTED);
    EXPECT_EQ(m_target.content.size(), 512u);
}

TEST_F(ClientReceiveToSource, AbortStopsThroughTheBaseStatusToo) {
    struct : CUT_WSClient {
        int IsAborted() override { return ++asked; }
        int asked = 0;
    } client;
    peers::Peer peer(peers::sending("abc"));
    ASSERT_EQ(client.Connect(peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
    EXPECT_EQ(client.Receive(m_target, OM_WRITE, 10, 0), UTE_ABORTED);
    EXPECT_EQ(client.asked, 1);
}

TEST_F(ClientReceiveToSource, WritesAFile) {
    const TempFolder folder;
    const std::wstring file = folder.file(L"received", "what was there before");
    peers::Peer peer(peers::sendingAndClosing(patternOf(5000)));
    connectTo(peer);
    EXPECT_EQ(m_client.ReceiveToFile(file.c_str(), OM_WRITE, 10, 0), UTE_SUCCESS);
    EXPECT_EQ(folder.content(L"received"), patternOf(5000));
}

TEST_F(ClientReceiveToSource, AppendsToAFile) {
    const TempFolder folder;
    const std::wstring file = folder.file(L"appended", "before");
    peers::Peer peer(peers::sendingAndClosing(" and behind"));
    connectTo(peer);
    EXPECT_EQ(m_client.ReceiveToFile(file.c_str(), OM_APPEND, 10, 7), UTE_SUCCESS);
    EXPECT_EQ(folder.content(L"appended"), "before and be");
}

TEST_F(ClientReceiveToSource, DoesNotMakeAFileForReading) {
    const TempFolder folder;
    const std::wstring file = folder.path(L"not-made");
    peers::Peer peer(peers::sendingAndClosing("x"));
    connectTo(peer);
    EXPECT_EQ(m_client.ReceiveToFile(file.c_str(), OM_READ, 10, 0), UTE_INVALID_OPEN_TYPE);
    EXPECT_FALSE(folder.has(L"not-made"));
}

TEST_F(ClientReceiveToSource, WritesAFileThroughTheOverriddenReceive) {
    struct : CUT_WSClient {
        using CUT_WSClient::Receive;
        int Receive(CUT_DataSource&, OpenMsgType type, int timeOut, long maxBytes) override {
            return 1000 * type + 10 * timeOut + static_cast<int>(maxBytes);
        }
    } client;
    EXPECT_EQ(client.ReceiveToFile(L"any", OM_APPEND, 3, 4), 2034);
}

}  // namespace
