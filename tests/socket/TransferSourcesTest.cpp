// Transfers of clients and workers between their connection and data sources or files.
#include "NyServer/socket/CUT_FileDataSource.h"
#include "tests/socket/EndTest.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/TempFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class End>
class SendingSources : public EndTest<End> {
  protected:
    int send() { return this->m_end.sendSource(m_source); }
    ScriptedSource m_source{patternOf(600)};
};
TYPED_TEST_SUITE(SendingSources, BothEnds, EndNames);

TYPED_TEST(SendingSources, SendsAllInPiecesOf255Bytes) {
    EXPECT_EQ(this->send(), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.sent(), 600);
    EXPECT_THAT(this->m_source.opened, ElementsAre(OM_READ));
    EXPECT_THAT(this->m_source.asked, ElementsAre(255u, 255u, 255u, 255u));
    EXPECT_THAT(this->m_end.sendLengths, ElementsAre(255, 255, 90));
    EXPECT_THAT(this->m_end.sentTotals, ElementsAre(255, 510, 600));
    EXPECT_THAT(this->m_end.codes, ElementsAre(UTE_SUCCESS));
    EXPECT_EQ(this->m_source.closed, 1);
    EXPECT_EQ(this->arrived(), patternOf(600));
}

TYPED_TEST(SendingSources, ReportsAPieceThatIsNotSent) {
    this->m_end.failingSend = 1;
    EXPECT_EQ(this->send(), TypeParam::kSendFailure);
    EXPECT_EQ(this->m_end.sent(), 255);
    EXPECT_EQ(this->m_source.closed, 1);
    EXPECT_THAT(this->m_end.codes, ElementsAre(TypeParam::kSendFailure));
    EXPECT_EQ(this->arrived(), patternOf(600).substr(0, 255));
}

TYPED_TEST(SendingSources, ClosesTheSourceAndReportsTheNumberOfBytes) {
    const struct {
        const char* story;
        void (*arrange)(TypeParam&, ScriptedSource&);
        int result;
        int sent;
        int closed;
    } rows[] = {
        {"does not open", [](auto&, auto& source) { source.openResult = -1; }, UTE_DS_OPEN_FAILED,
         0, 0},
        {"empty", [](auto&, auto& source) { source = ScriptedSource(""); }, UTE_SUCCESS, 0, 1},
        {"stopped by the status", [](auto& end, auto&) { end.sendStatus = 0; },
         TypeParam::kSendStopped, 255, 1},
        {"counts the bytes asked, not those sent",
         [](auto& end, auto&) {
             end.sendStatus = 1;
             end.failingSend = 1;  // after the one before
             end.failingResult = TypeParam::kUnsent + 1;
         },
         UTE_SUCCESS, 600, 1},
    };
    for (const auto& row : rows) {
        this->m_source = ScriptedSource(patternOf(600));
        this->m_end.codes.clear();
        row.arrange(this->m_end, this->m_source);
        EXPECT_EQ(this->send(), row.result) << row.story;
        EXPECT_EQ(this->m_end.sent(), row.sent) << row.story;
        EXPECT_EQ(this->m_source.closed, row.closed) << row.story;
        EXPECT_THAT(this->m_end.codes, ElementsAre(row.result)) << row.story;
    }
}

TYPED_TEST(SendingSources, NeedsAnOpenSocket) {
    this->m_end.attach(INVALID_SOCKET);
    EXPECT_EQ(this->send(), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(this->m_end.sent(), 0);
    EXPECT_THAT(this->m_source.opened, IsEmpty());
    EXPECT_THAT(this->m_end.codes, ElementsAre(UTE_SOCK_NOT_OPEN));
}

TYPED_TEST(SendingSources, SendsAFileAndReportsAMissingOne) {
    const TempFolder folder;
    EXPECT_EQ(this->m_end.sendFile(folder.file("sent", patternOf(5000))), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.sent(), 5000);
    EXPECT_EQ(this->m_end.sendFile(folder.path("missing")), UTE_DS_OPEN_FAILED);
    EXPECT_FALSE(folder.has("missing"));
    EXPECT_EQ(this->arrived(), patternOf(5000));
}

template <class End>
class ReceivingSources : public EndTest<End> {
  protected:
    int receive(int timeOut = 0, OpenMsgType type = OM_WRITE) {
        return this->m_end.receiveSource(m_target, type, timeOut);
    }
    ScriptedSource m_target;
};
TYPED_TEST_SUITE(ReceivingSources, BothEnds, EndNames);

TYPED_TEST(ReceivingSources, TakesAllUpToTheCloseInPiecesOf256Bytes) {
    this->peerSendsAndCloses(patternOf(600));
    EXPECT_EQ(this->receive(), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.received(), 600);
    EXPECT_EQ(this->m_target.content, patternOf(600));
    EXPECT_THAT(this->m_target.opened, ElementsAre(OM_WRITE));
    EXPECT_THAT(this->m_target.written, ElementsAre(256u, 256u, 88u));
    EXPECT_THAT(this->m_end.receiveLengths, ElementsAre(256, 256, 256, 256));
    EXPECT_THAT(this->m_end.receivedTotals, ElementsAre(256, 512, 600));
    EXPECT_THAT(this->m_end.codes, ElementsAre(UTE_SUCCESS)) << "no wait";
    EXPECT_EQ(this->m_target.closed, 1);
}

TYPED_TEST(ReceivingSources, OpensForAppendingWhenAskedAndRefusesAnyOtherType) {
    this->m_peer.close();
    EXPECT_EQ(this->receive(0, OM_APPEND), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.received(), 0);
    for (const int type : {0, 3, -1})
        EXPECT_EQ(this->receive(0, static_cast<OpenMsgType>(type)), UTE_INVALID_OPEN_TYPE);
    EXPECT_THAT(this->m_target.opened, ElementsAre(OM_APPEND));
    EXPECT_EQ(this->m_target.closed, 1);
    EXPECT_THAT(this->m_end.codes, ElementsAre(0, 26, 26, 26));
}

TYPED_TEST(ReceivingSources, NeedsAnOpenSocketBeforeAnythingElse) {
    this->m_end.attach(INVALID_SOCKET);
    EXPECT_EQ(this->receive(10, OM_READ), UTE_SOCK_NOT_OPEN);
    EXPECT_EQ(this->m_end.received(), 0);
    EXPECT_THAT(this->m_target.opened, IsEmpty());
}

TYPED_TEST(ReceivingSources, ReportsATargetThatDoesNotOpen) {
    this->m_target.openResult = -1;
    EXPECT_EQ(this->receive(10), UTE_DS_OPEN_FAILED);
    EXPECT_EQ(this->m_end.received(), 0);
    EXPECT_EQ(this->m_target.closed, 0);
}

TYPED_TEST(ReceivingSources, ReportsAFailedReceive) {
    this->peerSends("abc");
    this->m_end.failingReceive = 1;
    EXPECT_EQ(this->receive(), UTE_SOCK_RECEIVE_ERROR);
    EXPECT_EQ(this->m_end.received(), 3);
    EXPECT_EQ(this->m_target.closed, 1);
}

TYPED_TEST(ReceivingSources, ReportsTheSocketsOwnTimeOutAsAFailedReceive) {
    this->m_end.SetReceiveTimeOut(50);
    this->m_end.codes.clear();
    EXPECT_EQ(this->receive(), UTE_SOCK_RECEIVE_ERROR);
    EXPECT_THAT(this->m_end.codes, ElementsAre(UTE_SOCK_RECEIVE_ERROR));
}

TYPED_TEST(ReceivingSources, ReportsAShortWrite) {
    this->peerSendsAndCloses(patternOf(600));
    this->m_target.writeResult = 255;
    EXPECT_EQ(this->receive(10), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(this->m_end.received(), 0);
    EXPECT_THAT(this->m_target.written, ElementsAre(256u));
    EXPECT_EQ(this->m_target.closed, 1);
}

TYPED_TEST(ReceivingSources, EndsWhenTheStatusFunctionReturnsFalse) {
    this->peerSendsAndCloses(patternOf(600));
    this->m_end.receiveStatus = 0;
    EXPECT_EQ(this->receive(10), UTE_ABORTED);
    EXPECT_EQ(this->m_end.received(), 256);
    EXPECT_EQ(this->m_target.closed, 1);
}

TYPED_TEST(ReceivingSources, WritesAFileAndAppendsToIt) {
    const TempFolder folder;
    const WideText path = folder.file("f", "what was there before");
    this->peerSends(patternOf(5000));
    this->m_peer.finishSending();
    EXPECT_EQ(this->m_end.receiveFile(path, OM_WRITE, 10), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.received(), 5000);
    EXPECT_EQ(folder.content("f"), patternOf(5000));
    EXPECT_EQ(this->m_end.receiveFile(path, OM_APPEND, 10), UTE_SUCCESS);
    EXPECT_EQ(folder.content("f"), patternOf(5000));
    EXPECT_EQ(this->m_end.receiveFile(folder.path("not made"), OM_READ, 10), UTE_INVALID_OPEN_TYPE);
    EXPECT_FALSE(folder.has("not made"));
}

TYPED_TEST(ReceivingSources, GivesUpAfterItsSecondsAsItsOtherReceivesDo) {
    this->peerSends("some");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(this->receive(1), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(this->m_target.content, "some");
    EXPECT_EQ(this->m_end.received(), 4);
    EXPECT_EQ(this->m_target.closed, 1);
    char buffer[64];
    EXPECT_EQ(this->m_end.Receive(buffer, sizeof buffer, 1), 0);
    this->peerSends("unfinished");
    EXPECT_EQ(this->m_end.ReceiveLine(buffer, sizeof buffer, 1), 10);
    EXPECT_STREQ(buffer, "unfinished");
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(3 * 950));  // less the coarseness of the clocks
    EXPECT_LT(waited, std::chrono::seconds(3 * 8));
    EXPECT_THAT(this->m_end.codes, ElementsAre(0, 1, UTE_SOCK_TIMEOUT, 1, 0, 1));
    EXPECT_EQ(this->m_end.IsConnected(), 1);
}

// A device that takes no byte, where the system has one.
const WCHAR* const kFullDisks[] = {_T("\\\\?\\unix\\dev\\full"), _T("/dev/full")};

const WCHAR* fullDisk() {
    for (const WCHAR* path : kFullDisks)
        if (CUT_FileDataSource(path, 4096).Open(OM_READ) == 0) return path;
    return nullptr;
}

TYPED_TEST(ReceivingSources, EndsAtAFullDiskAndLeavesTheConnection) {
    if (!fullDisk()) GTEST_SKIP() << "this system has no device that is always full";
    this->peerSends(patternOf(600));
    EXPECT_EQ(this->m_end.receiveFile(fullDisk(), OM_WRITE, 10), UTE_DS_WRITE_FAILED);
    EXPECT_EQ(this->m_end.received(), 0);
    EXPECT_EQ(this->m_end.codes.back(), UTE_DS_WRITE_FAILED);
    EXPECT_THAT(this->m_end.receivedTotals, IsEmpty());
    EXPECT_TRUE(this->m_end.IsConnected());
    char rest[600];
    EXPECT_EQ(this->m_end.Receive(rest, sizeof rest, 10), 600 - 256);
}

TYPED_TEST(ReceivingSources, ReadsNothingForAFileInAMissingFolder) {
    const TempFolder folder;
    this->peerSends("abc");
    EXPECT_EQ(this->m_end.receiveFile(folder.path("missing/file"), OM_WRITE, 10),
              UTE_DS_OPEN_FAILED);
    char rest[3];
    EXPECT_EQ(this->m_end.Receive(rest, sizeof rest, 10), 3);
}

TEST(FullDisk, TakesNoByteOfADataSource) {
    if (!fullDisk()) GTEST_SKIP() << "this system has no device that is always full";
    CUT_FileDataSource source(fullDisk(), 4096);
    for (const OpenMsgType type : {OM_WRITE, OM_APPEND}) {
        ASSERT_EQ(source.Open(type), 0);
        EXPECT_EQ(source.Write("abc", 3), -1);
        EXPECT_EQ(source.WriteLine("abc"), -1);
        EXPECT_EQ(source.Close(), 0);
    }
}

// What the two ends do differently.
class ClientTransfer : public Client {
  protected:
    int receive(int timeOut, long maxBytes) {
        return m_end.Receive(m_target, OM_WRITE, timeOut, maxBytes);
    }
    ScriptedSource m_target;
};

TEST_F(ClientTransfer, EndsAtTheLimit) {
    peerSendsAndCloses(patternOf(600));
    EXPECT_EQ(receive(10, 300), UTE_SUCCESS);
    EXPECT_EQ(m_target.content, patternOf(600).substr(0, 300));
    EXPECT_THAT(m_target.written, ElementsAre(256u, 44u));
    EXPECT_THAT(m_end.receiveLengths, ElementsAre(256, 44)) << "none for nothing";
    const TempFolder folder;
    const WideText path = folder.file("f", "before");
    EXPECT_EQ(m_end.ReceiveToFile(path.c_str(), OM_APPEND, 10, 7), UTE_SUCCESS);
    EXPECT_EQ(folder.content("f"), "before" + patternOf(600).substr(300, 7));
    char rest[600];
    EXPECT_EQ(m_end.Receive(rest, sizeof rest, 10), 293) << "what is after the limit stays";
}

TEST_F(ClientTransfer, EndsAtTheLimitWithoutTimeOutThoughThePeerIsSilent) {
    peerSends(patternOf(256));
    EXPECT_EQ(receive(0, 256), UTE_SUCCESS);
    EXPECT_EQ(m_target.content, patternOf(256));
    EXPECT_THAT(m_end.receiveWaits, IsEmpty());
}

TEST_F(ClientTransfer, WaitsAfterTheLimitToo) {
    peerSends("abc");
    EXPECT_EQ(receive(1, 3), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(m_target.content, "abc");
}

TEST_F(ClientTransfer, WaitsThroughTheOverriddenWait) {
    peerSends("hello\n");
    m_end.isDeaf = true;
    char buffer[16];
    EXPECT_EQ(m_end.Receive(buffer, sizeof buffer, 10), 0);
    EXPECT_EQ(m_end.ReceiveLine(buffer, sizeof buffer, 9), 0);
    EXPECT_EQ(receive(8, 0), UTE_SOCK_TIMEOUT);
    EXPECT_EQ(m_target.closed, 1);
    EXPECT_EQ(m_target.content, "");
    EXPECT_THAT(m_end.receiveWaits, ElementsAre(10, 9, 8));
    m_end.isDeaf = false;
    EXPECT_EQ(m_end.ReceiveLine(buffer, sizeof buffer, 0), 6) << "nothing was read";
}

TEST_F(ClientTransfer, StopsWhenAborted) {
    m_end.abortAfter = 1;
    ScriptedSource source(patternOf(600));
    EXPECT_EQ(m_end.Send(source), UTE_ABORTED);
    EXPECT_THAT(m_end.sentTotals, ElementsAre(255, 510));
    m_end.abortChecks = 0;
    peerSendsAndCloses(patternOf(600));
    EXPECT_EQ(receive(10, 0), UTE_ABORTED);
    EXPECT_EQ(m_target.content.size(), 512u);
}

TEST(ClientTransferOfTheBase, StopsThroughItsStatusWhenAborted) {
    struct : CUT_WSClient {
        int IsAborted() override { return ++asked; }
        int asked = 0;
    } client;
    peers::Peer peer(peers::sending("abc"));
    ASSERT_EQ(client.Connect(peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
    ScriptedSource source(patternOf(600));
    EXPECT_EQ(client.Send(source), UTE_ABORTED);
    EXPECT_EQ(client.asked, 1) << "the base status asked, and its 0 is enough";
    EXPECT_EQ(client.Receive(source, OM_WRITE, 10, 0), UTE_ABORTED);
    EXPECT_EQ(client.asked, 2);
}

TEST(ClientTransferOfFiles, IsThatOfTheirSources) {
    struct : CUT_WSClient {
        using CUT_WSClient::Receive;
        using CUT_WSClient::Send;
        int Send(CUT_DataSource&) override { return 4711; }
        int Receive(CUT_DataSource&, OpenMsgType type, int timeOut, long maxBytes) override {
            return 1000 * type + 10 * timeOut + static_cast<int>(maxBytes);
        }
    } client;
    EXPECT_EQ(client.SendFile(_T("any")), 4711);
    EXPECT_EQ(client.ReceiveToFile(_T("any"), OM_APPEND, 3, 4), 2034);
}

TEST_F(Worker, TransfersAgainAfterAnAbort) {
    m_end.setAborted(true);
    ScriptedSource source(patternOf(300));
    EXPECT_EQ(m_end.sendSource(source), UTE_SUCCESS);
    EXPECT_EQ(m_end.sent(), 300);
    for (size_t read = 0; read < 300;)
        read += m_peer.receive().size();  // else the close is a reset
    peerSendsAndCloses(patternOf(300));
    ScriptedSource target;
    EXPECT_EQ(m_end.receiveSource(target, OM_WRITE, 0), UTE_SUCCESS);
    EXPECT_EQ(m_end.received(), 300);
}

}  // namespace
