#include "NyServer/socket/CUT_WSThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/ProbeWorker.h"
#include "tests/support/ScriptedSource.h"
#include "tests/support/SlotOrder.h"
#include "tests/support/TempFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A worker at one end of a connection; the test is the peer.
class Worker : public testing::Test {
  protected:
    Worker() : m_peer(m_pair.takeFarEnd()) { m_worker.attach(m_pair.nearEnd()); }

    // What the peer receives once the worker's end is closed.
    std::string arrived() {
        m_pair.closeNear();
        return m_peer.receiveAll();
    }
    void peerSends(std::string_view data) {
        m_peer.send(data);
        awaitBytes(data.size());
    }
    // Until so many bytes can be read at once.
    void awaitBytes(size_t count) {
        for (u_long waiting = 0; waiting < count; ::Sleep(1))
            ASSERT_EQ(::ioctlsocket(m_pair.nearEnd(), FIONREAD, &waiting), 0);
    }
    void awaitPeersEnd() { ASSERT_EQ(m_worker.WaitForReceive(10, 0), 0); }

    // A line received into a buffer of `fill`, cut at what the call says it has stored.
    std::string receiveLine(int maxLen, int timeOut = 1, char fill = '#') {
        m_line.assign(200, fill);
        const int stored = m_worker.ReceiveLine(m_line.data(), maxLen, timeOut);
        EXPECT_TRUE(stored == 0 || m_line[static_cast<size_t>(stored)] == '\0');
        return m_line.substr(0, static_cast<size_t>(stored));
    }

    peers::SocketPair m_pair;
    peers::Connection m_peer;
    ProbeWorker m_worker;
    std::string m_line;
};

TEST(WorkerSlots, StandInTheirOrder) {
    EXPECT_EQ(slotOf<int (CUT_WSThread::*)(const char*, int, int)>(&CUT_WSThread::Send), 2u);
    EXPECT_EQ(slotOf<int (CUT_WSThread::*)(CUT_DataSource&, long&)>(&CUT_WSThread::Send), 3u);
    EXPECT_EQ(slotOf(&CUT_WSThread::SendAsLine), 4u);
    EXPECT_EQ(slotOf(&CUT_WSThread::SendFile), 5u);
    EXPECT_EQ(slotOf<int (CUT_WSThread::*)(char*, int, int)>(&CUT_WSThread::Receive), 6u);
    EXPECT_EQ(slotOf<int (CUT_WSThread::*)(CUT_DataSource&, long&, OpenMsgType, int)>(
                  &CUT_WSThread::Receive),
              7u);
    EXPECT_EQ(slotOf(&CUT_WSThread::ReceiveToFile), 8u);
    EXPECT_EQ(slotOf(&CUT_WSThread::ReceiveLine), 9u);
    EXPECT_EQ(slotOf(&CUT_WSThread::OnConnect), 10u);
    EXPECT_EQ(slotOf(&CUT_WSThread::OnMaxConnect), 11u);
    EXPECT_EQ(slotOf(&CUT_WSThread::OnReserved), 12u);
    EXPECT_EQ(slotOf(&CUT_WSThread::ReceiveFileStatus), 13u);
    EXPECT_EQ(slotOf(&CUT_WSThread::SendFileStatus), 14u);
    EXPECT_EQ(slotOf(&CUT_WSThread::OnError), 15u);
}

TEST(WorkerHooks, AnswerFixedValues) {
    CUT_WSThread worker;
    EXPECT_EQ(worker.ReceiveFileStatus(5), 1);
    EXPECT_EQ(worker.SendFileStatus(5), 1);
    EXPECT_EQ(worker.OnError(42), 42);
    worker.OnReserved();
}

TEST(WorkerWithoutSocket, FailsHarmlessly) {
    const peers::WinsockSession winsock;
    ProbeWorker worker;
    char byte = 0;
    EXPECT_EQ(worker.socket(), 0u);
    EXPECT_EQ(worker.owner(), nullptr);
    EXPECT_EQ(worker.blockingMode(), 0);
    EXPECT_EQ(worker.abortFlag(), 0);
    EXPECT_EQ(worker.Send("abc", -1, 0), -1);
    EXPECT_EQ(worker.Receive(&byte, 1, 0), -1);
    EXPECT_EQ(worker.IsConnected(), 0);
    EXPECT_EQ(worker.IsDataWaiting(), 0);
}

TEST_F(Worker, SendsAsManyBytesAsAsked) {
    EXPECT_EQ(m_worker.Send("abcdef", 3, 0), 3);
    EXPECT_EQ(arrived(), "abc");
}

TEST_F(Worker, TakesTheTextsLengthOnlyForNegativeLengths) {
    EXPECT_EQ(m_worker.Send("abc", 0, 0), 0);
    EXPECT_EQ(m_worker.Send("abc", -1, 0), 3);
    EXPECT_EQ(m_worker.Send("de", -7, 0), 2);
    EXPECT_EQ(arrived(), "abcde");
}

TEST_F(Worker, SendsLinesAndCountsTheirEnds) {
    std::string text = "abcdefgh";
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 8, 3), 8 + 3 * 2);
    EXPECT_EQ(text, "abcdefgh");
    EXPECT_THAT(m_worker.sends, ElementsAre("abc\r\n", "def\r\n", "gh\r\n"));
    EXPECT_THAT(m_worker.sendLengths, ElementsAre(-1, -1, -1));
    EXPECT_EQ(arrived(), "abc\r\ndef\r\ngh\r\n");
}

TEST_F(Worker, SendsNoEmptyLineBehindFullOnes) {
    std::string text = "abcdef";
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 6, 3), 10);
    EXPECT_EQ(arrived(), "abc\r\ndef\r\n");
}

TEST_F(Worker, TakesTheTextsLengthForLinesOfNoLength) {
    std::string text = "abcd";
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 0, 10), 6);
    EXPECT_EQ(m_worker.SendAsLine(text.data(), -3, 10), 6);
    EXPECT_EQ(arrived(), "abcd\r\nabcd\r\n");
}

TEST_F(Worker, SendsOnlyTheStartOfTheDataAsLines) {
    std::string text = "abcdXYZ";
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 4, 10), 6);
    EXPECT_EQ(text, "abcdXYZ");
    EXPECT_EQ(arrived(), "abcd\r\n");
}

TEST_F(Worker, EndsALineAtAZeroByte) {
    char text[] = {'a', 'b', '\0', 'c', 'd', '\0'};
    EXPECT_EQ(m_worker.SendAsLine(text, 5, 4), 4 + 3);
    EXPECT_EQ(arrived(), "ab\r\nd\r\n");
}

TEST_F(Worker, SendsNoLinesOfNothing) {
    char empty[] = "";
    std::string text = "abc";
    EXPECT_EQ(m_worker.SendAsLine(empty, 0, 10), 0);
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 3, 0), 0);
    EXPECT_THAT(m_worker.sends, IsEmpty());
}

TEST_F(Worker, GivesTheResultOfTheSendThatEndsItsLines) {
    std::string text = "abcdef";
    m_worker.failingSend = 1;
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 6, 2), -1);
    EXPECT_EQ(text, "abcdef");
    m_worker.failingSend = 2;
    m_worker.failingResult = 0;
    EXPECT_EQ(m_worker.SendAsLine(text.data(), 6, 2), 0);
    EXPECT_EQ(arrived(), "ab\r\n");
}

TEST_F(Worker, ReceivesWhatHasCome) {
    char buffer[10];
    peerSends("abc");
    EXPECT_EQ(m_worker.Receive(buffer, 2, 0), 2);
    EXPECT_EQ(m_worker.Receive(buffer, 10, 1), 1);
    EXPECT_EQ(buffer[0], 'c');
}

TEST_F(Worker, ReceivesNothingWithinATimeOut) {
    char byte = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_worker.Receive(&byte, 1, 1), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    EXPECT_THAT(m_worker.codes, ElementsAre(1));
}

TEST_F(Worker, ReceivesNothingFromAPeerThatHasClosed) {
    char byte = 0;
    m_peer.close();
    EXPECT_EQ(m_worker.Receive(&byte, 1, 0), 0);
}

TEST_F(Worker, ReceivesOneLineAndNothingBehindIt) {
    peerSends("ab\r\ncd");
    EXPECT_EQ(receiveLine(100), "ab\r\n");
    char rest[3] = "";
    m_worker.Receive(rest, 2, 0);
    EXPECT_STREQ(rest, "cd");
}

TEST_F(Worker, TakesOnlyThePairForALineEnd) {
    peerSends("a\nb\rc\r\n");
    EXPECT_EQ(receiveLine(100), "a\nb\rc\r\n");
}

TEST_F(Worker, CutsALineThatDoesNotFit) {
    peerSends("abcdef\r\n");
    EXPECT_EQ(receiveLine(5), "abcd");
    EXPECT_EQ(receiveLine(5), "ef\r\n");
}

TEST_F(Worker, KeepsItsLineWithinTheBuffer) {
    peerSends("abc\r\n");
    EXPECT_EQ(receiveLine(5, 1, '\n'), "abc\r");
    EXPECT_EQ(m_line[5], '\n');
}

TEST_F(Worker, ReadsNoLineIntoABufferOfOneByte) {
    peerSends("ab\r\n");
    EXPECT_EQ(receiveLine(1), "");
    EXPECT_EQ(receiveLine(0), "");
    EXPECT_EQ(receiveLine(100), "ab\r\n");
}

TEST_F(Worker, JoinsALineFromParts) {
    std::thread sender([this] {
        m_peer.send("ab");
        ::Sleep(100);
        m_peer.send("cd\r\n");
    });
    EXPECT_EQ(receiveLine(100), "abcd\r\n");
    sender.join();
}

TEST_F(Worker, DoesNotRecogniseALineEndThatIsSplit) {
    std::thread sender([this] {
        m_peer.send("ab\r");
        ::Sleep(100);
        m_peer.send("\ncd\r\n");
    });
    EXPECT_EQ(receiveLine(100), "ab\r\ncd\r\n");
    sender.join();
}

TEST_F(Worker, JudgesALastCarriageReturnByWhatTheBufferHeldBehindIt) {
    peerSends("ab\r");
    EXPECT_EQ(receiveLine(100, 1, '\n'), "ab\r\n");
    EXPECT_FALSE(m_worker.IsDataWaiting());
}

TEST_F(Worker, KeepsAnUnfinishedLineWhenTimeIsUp) {
    peerSends("ab");
    EXPECT_EQ(receiveLine(100), "ab");
    EXPECT_THAT(m_worker.codes, ElementsAre(0, 1));
}

TEST_F(Worker, KeepsAnUnfinishedLineWhenThePeerCloses) {
    peerSends("ab");
    m_peer.close();
    EXPECT_EQ(receiveLine(100, 0), "ab");
}

TEST_F(Worker, ReadsNoLineOnceItIsAborted) {
    peerSends("ab\r\n");
    m_worker.abort();
    EXPECT_EQ(receiveLine(100), "");
}

TEST_F(Worker, ClearsAllThatHasCome) {
    peerSends(std::string(600, 'x'));
    EXPECT_EQ(m_worker.ClearReceiveBuffer(), 0);
    EXPECT_THAT(m_worker.receiveLengths, ElementsAre(256, 256, 256));
    EXPECT_FALSE(m_worker.IsDataWaiting());
    EXPECT_THAT(m_worker.codes, IsEmpty());
}

TEST_F(Worker, StopsClearingWhenAReceiveFails) {
    peerSends("abc");
    m_worker.failingReceive = 0;
    EXPECT_EQ(m_worker.ClearReceiveBuffer(), 0);
    EXPECT_TRUE(m_worker.IsDataWaiting());
}

TEST_F(Worker, TellsWhetherDataIsWaiting) {
    EXPECT_EQ(m_worker.IsDataWaiting(), 0);
    peerSends("a");
    EXPECT_EQ(m_worker.IsDataWaiting(), 1);
}

TEST_F(Worker, TellsWhetherThePeerIsThere) {
    EXPECT_EQ(m_worker.IsConnected(), 1);
    EXPECT_EQ(m_worker.blockingMode(), 0);
    m_peer.close();
    awaitPeersEnd();
    EXPECT_EQ(m_worker.IsConnected(), 0);
}

TEST_F(Worker, TakesAPeerWithWaitingDataForConnected) {
    peerSends("a");
    m_peer.close();
    EXPECT_EQ(m_worker.IsConnected(), 1);
}

TEST_F(Worker, WaitsThroughOnError) {
    EXPECT_EQ(m_worker.WaitForReceive(0, 1000), 1);
    peerSends("a");
    EXPECT_EQ(m_worker.WaitForReceive(0, 1000), 0);
    EXPECT_THAT(m_worker.codes, ElementsAre(1, 0));
}

TEST_F(Worker, StoresTheBlockingMode) {
    char byte = 0;
    m_worker.SetBlockingMode(1);
    EXPECT_EQ(m_worker.blockingMode(), 1);
    EXPECT_EQ(m_worker.Receive(&byte, 1, 0), -1);
    EXPECT_EQ(::WSAGetLastError(), WSAEWOULDBLOCK);
    m_worker.SetBlockingMode(0);
    EXPECT_EQ(m_worker.blockingMode(), 0);
}

TEST_F(Worker, StoresTimeOutsThatTheSocketTook) {
    m_worker.SetReceiveTimeOut(1500);
    m_worker.SetSendTimeOut(2500);
    int value = 0;
    int length = sizeof value;
    ::getsockopt(m_worker.socket(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<char*>(&value),
                 &length);
    EXPECT_EQ(value, 1500);
    ::getsockopt(m_worker.socket(), SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<char*>(&value),
                 &length);
    EXPECT_EQ(value, 2500);
    m_worker.attach(INVALID_SOCKET);
    m_worker.SetReceiveTimeOut(1);
    m_worker.SetSendTimeOut(2);
    EXPECT_EQ(m_worker.receiveTimeOut(), 1500);
    EXPECT_EQ(m_worker.sendTimeOut(), 2500);
}

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
