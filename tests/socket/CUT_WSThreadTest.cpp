#include "NyServer/socket/CUT_WSThread.h"

#include <gmock/gmock.h>

#include <chrono>

#include "tests/socket/WorkerTest.h"
#include "tests/support/SlotOrder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST_F(Worker, TakesALastCarriageReturnByWhatTheBufferHeldBehindIt) {
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

}  // namespace
