// The worker's transfers between its connection and data sources.
#include <gmock/gmock.h>

#include "tests/socket/WorkerTest.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/TempFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class WorkerSending : public Worker {
  protected:
    int send(ScriptedSource& source) { return m_worker.Send(source, m_sent); }
    long m_sent = 77;
};

TEST_F(WorkerSending, SendsASourceInPieces) {
    ScriptedSource source(std::string(600, 'x'));
    EXPECT_EQ(send(source), 0);
    EXPECT_EQ(m_sent, 600);
    EXPECT_THAT(source.opened, ElementsAre(0));
    EXPECT_THAT(source.asked, ElementsAre(255u, 255u, 255u, 255u));
    EXPECT_THAT(m_worker.sendLengths, ElementsAre(255, 255, 90));
    EXPECT_THAT(m_worker.sentTotals, ElementsAre(255, 510, 600));
    EXPECT_THAT(m_worker.codes, ElementsAre(0));
    EXPECT_EQ(source.closed, 1);
    EXPECT_EQ(arrived(), source.content);
}

TEST_F(WorkerSending, SendsAnEmptySource) {
    ScriptedSource source;
    EXPECT_EQ(send(source), 0);
    EXPECT_EQ(m_sent, 0);
    EXPECT_EQ(source.closed, 1);
    EXPECT_THAT(m_worker.sends, IsEmpty());
    EXPECT_THAT(m_worker.codes, ElementsAre(0));
}

TEST_F(WorkerSending, ReportsASourceThatDoesNotOpen) {
    ScriptedSource source("abc");
    source.openResult = -1;
    EXPECT_EQ(send(source), 79);
    EXPECT_EQ(m_sent, 0);
    EXPECT_THAT(m_worker.codes, ElementsAre(79));
}

TEST_F(WorkerSending, ReportsAFailedSendWithItsOwnCode) {
    ScriptedSource source(std::string(600, 'x'));
    m_worker.failingSend = 1;
    EXPECT_EQ(send(source), 4);
    EXPECT_EQ(m_sent, 255);
    EXPECT_EQ(source.closed, 1);
    EXPECT_THAT(m_worker.codes, ElementsAre(4));
}

TEST_F(WorkerSending, TakesASendOfNothingForSuccess) {
    ScriptedSource source(std::string(300, 'x'));
    m_worker.failingSend = 0;
    m_worker.failingResult = 0;
    EXPECT_EQ(send(source), 0);
    EXPECT_EQ(m_sent, 300);
}

TEST_F(WorkerSending, SucceedsWhenItsStatusHookStopsIt) {
    ScriptedSource source(std::string(600, 'x'));
    m_worker.sendStatus = 0;
    EXPECT_EQ(send(source), 0);
    EXPECT_EQ(m_sent, 255);
    EXPECT_EQ(source.closed, 1);
}

TEST_F(WorkerSending, SendsOnAfterAnAbort) {
    ScriptedSource source(std::string(300, 'x'));
    m_worker.abort();
    EXPECT_EQ(send(source), 0);
    EXPECT_EQ(m_sent, 300);
}

TEST_F(WorkerSending, NeedsASocket) {
    ScriptedSource source("abc");
    m_worker.attach(INVALID_SOCKET);
    EXPECT_EQ(send(source), 15);
    EXPECT_EQ(m_sent, 0);
    EXPECT_THAT(source.opened, IsEmpty());
    EXPECT_THAT(m_worker.codes, ElementsAre(15));
}

TEST_F(WorkerSending, SendsAFile) {
    const TempFolder folder;
    EXPECT_EQ(m_worker.SendFile(folder.file(L"f", "ab\r\ncd").c_str(), m_sent), 0);
    EXPECT_EQ(m_sent, 6);
    EXPECT_EQ(m_worker.SendFile(folder.path(L"missing").c_str(), m_sent), 79);
    EXPECT_EQ(m_sent, 0);
    EXPECT_EQ(arrived(), "ab\r\ncd");
}

class WorkerReceiving : public Worker {
  protected:
    int receive(int timeOut = 0) {
        return m_worker.Receive(m_target, m_received, OM_WRITE, timeOut);
    }
    // The peer sends so many bytes and closes.
    void peerSendsAll(size_t count) {
        peerSends(std::string(count, 'x'));
        m_peer.close();
    }
    ScriptedSource m_target;
    long m_received = 77;
};

TEST_F(WorkerReceiving, ReceivesUntilThePeerCloses) {
    peerSendsAll(600);
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(m_received, 600);
    EXPECT_EQ(m_target.content, std::string(600, 'x'));
    EXPECT_THAT(m_target.opened, ElementsAre(1));
    EXPECT_THAT(m_target.written, ElementsAre(256u, 256u, 88u));
    EXPECT_THAT(m_worker.receiveLengths, ElementsAre(256, 256, 256, 256));
    EXPECT_THAT(m_worker.receivedTotals, ElementsAre(256, 512, 600));
    EXPECT_THAT(m_worker.codes, ElementsAre(0));
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(WorkerReceiving, OpensTheTargetAsAsked) {
    m_peer.close();
    EXPECT_EQ(m_worker.Receive(m_target, m_received, OM_APPEND, 0), 0);
    EXPECT_THAT(m_target.opened, ElementsAre(2));
    EXPECT_EQ(m_received, 0);
}

TEST_F(WorkerReceiving, RefusesToOpenTheTargetForReading) {
    for (int type : {0, 3, -1})
        EXPECT_EQ(m_worker.Receive(m_target, m_received, static_cast<OpenMsgType>(type), 0), 26);
    EXPECT_THAT(m_target.opened, IsEmpty());
    EXPECT_EQ(m_target.closed, 0);
    EXPECT_EQ(m_received, 0);
    EXPECT_THAT(m_worker.codes, ElementsAre(26, 26, 26));
}

TEST_F(WorkerReceiving, ReportsATargetThatDoesNotOpen) {
    m_target.openResult = -1;
    EXPECT_EQ(receive(), 79);
    EXPECT_EQ(m_received, 0);
}

TEST_F(WorkerReceiving, ReportsATimeOut) {
    peerSends("abc");
    EXPECT_EQ(receive(1), 20);
    EXPECT_EQ(m_received, 3);
    EXPECT_EQ(m_target.closed, 1);
    EXPECT_THAT(m_worker.codes, ElementsAre(0, 1, 20));
}

TEST_F(WorkerReceiving, ReportsAFailedReceive) {
    peerSends("abc");
    m_worker.failingReceive = 1;
    EXPECT_EQ(receive(), 21);
    EXPECT_EQ(m_received, 3);
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(WorkerReceiving, ReportsTheSocketsOwnTimeOutAsAFailedReceive) {
    m_worker.SetReceiveTimeOut(50);
    EXPECT_EQ(receive(), 21);
    EXPECT_THAT(m_worker.codes, ElementsAre(21));
}

TEST_F(WorkerReceiving, ReportsAShortWrite) {
    peerSendsAll(600);
    m_target.writeResult = 255;
    EXPECT_EQ(receive(), 81);
    EXPECT_EQ(m_received, 0);
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(WorkerReceiving, ReportsThatItsStatusHookStoppedIt) {
    peerSendsAll(600);
    m_worker.receiveStatus = 0;
    EXPECT_EQ(receive(), 90);
    EXPECT_EQ(m_received, 256);
    EXPECT_EQ(m_target.closed, 1);
}

TEST_F(WorkerReceiving, ReceivesOnAfterAnAbort) {
    peerSendsAll(300);
    m_worker.abort();
    EXPECT_EQ(receive(), 0);
    EXPECT_EQ(m_received, 300);
}

TEST_F(WorkerReceiving, NeedsASocketBeforeAnythingElse) {
    m_worker.attach(INVALID_SOCKET);
    EXPECT_EQ(m_worker.Receive(m_target, m_received, OM_READ, 0), 15);
    EXPECT_EQ(m_received, 0);
    EXPECT_THAT(m_target.opened, IsEmpty());
}

TEST_F(WorkerReceiving, ReceivesIntoAFile) {
    const TempFolder folder;
    const std::wstring path = folder.file(L"f", "old");
    peerSends("abc");
    m_peer.close();
    EXPECT_EQ(m_worker.ReceiveToFile(path.c_str(), OM_APPEND, m_received, 0), 0);
    EXPECT_EQ(m_received, 3);
    EXPECT_EQ(folder.content(L"f"), "oldabc");
    EXPECT_EQ(m_worker.ReceiveToFile(path.c_str(), OM_READ, m_received, 0), 26);
    EXPECT_EQ(m_worker.ReceiveToFile(path.c_str(), OM_WRITE, m_received, 0), 0);
    EXPECT_EQ(folder.content(L"f"), "");
}

TEST_F(Worker, AnswersALineAndReturns) {
    peerSends("hello\r\nand more");
    m_worker.OnConnect();
    EXPECT_THAT(m_worker.lineLengths, ElementsAre(100));
    EXPECT_FALSE(m_worker.IsDataWaiting());
    EXPECT_THAT(m_worker.sendLengths, ElementsAre(-1));
    EXPECT_EQ(arrived(), "Connect Successful ... Now Disconnecting.");
}

TEST_F(Worker, AnswersNoPeerThatSendsNothing) {
    m_peer.finishSending();
    m_worker.OnConnect();
    EXPECT_THAT(m_worker.sends, IsEmpty());
    EXPECT_EQ(arrived(), "");
}

TEST_F(Worker, RefusesAPeerWithoutAWord) {
    peerSends("hello");
    m_worker.OnMaxConnect();
    EXPECT_THAT(m_worker.receiveLengths, ElementsAre(256));
    EXPECT_THAT(m_worker.sendLengths, ElementsAre(0));
    EXPECT_EQ(arrived(), "");
}

TEST_F(Worker, DoesNotEvenTryToAnswerARefusedPeerThatSendsNothing) {
    m_peer.finishSending();
    m_worker.OnMaxConnect();
    EXPECT_THAT(m_worker.sends, IsEmpty());
}

}  // namespace
