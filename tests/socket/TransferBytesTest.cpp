// Bytes and lines that clients and workers send, bytes that they receive, and what they say about
// their connection.
#include <climits>

#include "tests/socket/EndTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class End>
class SendingBytes : public EndTest<End> {};
TYPED_TEST_SUITE(SendingBytes, BothEnds, EndNames);

TYPED_TEST(SendingBytes, SendsAsManyAsRequested) {
    EXPECT_EQ(this->m_end.sendBytes("ab\0cd", 5), 5);
    EXPECT_EQ(this->m_end.sendBytes("efgh", 2), 2);
    EXPECT_THAT(this->m_end.codes, IsEmpty()) << "counts are not given to OnError";
    EXPECT_EQ(this->arrived(), std::string("ab\0cdef", 7));
}

TYPED_TEST(SendingBytes, TakesTheTextsLengthForANegativeOne) {
    EXPECT_EQ(this->m_end.sendBytes("abc", -1), 3);
    EXPECT_EQ(this->m_end.sendBytes("de", -7), 2);
    EXPECT_EQ(this->m_end.sendBytes("", -1), 0);
    EXPECT_EQ(this->arrived(), "abcde");
}

TYPED_TEST(SendingBytes, OfNoLengthAreAClientsTextAndAWorkersNothing) {
    const std::string sent = TypeParam::kTakesZeroForTheTextsLength ? "zero" : "";
    EXPECT_EQ(this->m_end.sendBytes("zero", 0), static_cast<int>(sent.size()));
    EXPECT_EQ(this->m_end.sendBytes("", 0), 0);
    EXPECT_EQ(this->arrived(), sent);
}

using ClientWaitForSend = Client;

TEST_F(ClientWaitForSend, FindsAnIdleSocketReadyAndAFullOneNot) {
    EXPECT_EQ(m_end.WaitForSend(0, 0), UTE_SUCCESS);
    ASSERT_EQ(m_end.SetBlockingMode(1), UTE_SUCCESS);
    const std::string block(1 << 16, 'x');
    for (int i = 0; i < 1000 && m_end.Send(block.data(), 1 << 16) > 0; ++i) {
    }
    EXPECT_EQ(m_end.WaitForSend(0, 1000), UTE_ERROR);
    m_end.attach(INVALID_SOCKET);
    EXPECT_EQ(m_end.WaitForSend(0, 0), UTE_ERROR);
    EXPECT_THAT(m_end.codes, ElementsAre(0, 0, 1, 1));
}

template <class End>
class SendingLines : public EndTest<End> {
  protected:
    int sendLines(std::string text, int len, int lineLen) {
        return this->m_end.SendAsLine(text.data(), len, lineLen);
    }
};
TYPED_TEST_SUITE(SendingLines, BothEnds, EndNames);

TYPED_TEST(SendingLines, EndEachPieceWithALineEnd) {
    const struct {
        const char* text;
        int len;
        int lineLen;
        int count;  // of bytes of the text
        int lines;
        const char* arrived;
    } rows[] = {
        {"abcdefgh", 8, 3, 8, 3, "abc\r\ndef\r\ngh\r\n"},
        {"abcdef, not sent", 6, 3, 6, 2, "abc\r\ndef\r\n"},
        {"abc", 3, 80, 3, 1, "abc\r\n"},
        {"abc", 3, INT_MAX, 3, 1, "abc\r\n"},
        {"abcd", -1, 2, 4, 2, "ab\r\ncd\r\n"},
        {"abcdef", 3, 2, 3, 2, "ab\r\nc\r\n"},
        {"", -1, 3, 0, 0, ""},
        {"abc", 3, 0, 0, 0, ""},
        {"abc", 3, -1, 0, 0, ""},
    };
    std::string arrived;
    for (const auto& row : rows) {
        EXPECT_EQ(this->sendLines(row.text, row.len, row.lineLen),
                  row.count + row.lines * TypeParam::kLineEndsCounted)
            << row.arrived;
        arrived += row.arrived;
    }
    EXPECT_EQ(this->arrived(), arrived);
}

TYPED_TEST(SendingLines, OfNoLengthAreAWorkersTextAndAClientsNothing) {
    const bool isWorker = !TypeParam::kTakesZeroForTheTextsLength;
    EXPECT_EQ(this->sendLines("abcd", 0, 10), isWorker ? 4 + 2 : 0);
    EXPECT_EQ(this->sendLines("", 0, 10), 0);
    EXPECT_EQ(this->arrived(), isWorker ? "abcd\r\n" : "");
}

using ClientSendLine = SendingLines<ClientEnd>;

TEST_F(ClientSendLine, StopsWhenAbortedOrAtAPieceOrALineEndThatIsNotSent) {
    const struct {
        int abortAfter;
        int failingSend;  // a client sends its line ends apart
        int result;
        const char* arrived;
    } rows[] = {
        {2, -1, 6, "abc\r\ndef\r\n"}, {0, -1, 0, ""}, {-1, 2, 3, "abc\r\n"}, {-1, 1, 3, "abc"}};
    std::string all;
    for (const auto& row : rows) {
        m_end.abortAfter = row.abortAfter;
        m_end.abortChecks = 0;
        m_end.failingSend = row.failingSend;
        m_end.sends.clear();
        EXPECT_EQ(sendLines("abcdefgh", 8, 3), row.result) << row.arrived;
        all += row.arrived;
    }
    EXPECT_EQ(arrived(), all);
}

using WorkerSendLine = SendingLines<WorkerEnd>;

TEST_F(WorkerSendLine, SendsEachLineWithItsEndAndEndsItAtAZeroByte) {
    EXPECT_EQ(sendLines(std::string("ab\0cd", 5), 5, 4), 4 + 3);
    EXPECT_THAT(m_end.sends, ElementsAre("ab\r\n", "d\r\n"));
    EXPECT_THAT(m_end.sendLengths, ElementsAre(-1, -1));
}

TEST_F(WorkerSendLine, ReturnsTheResultOfTheSendThatEndsItsLines) {
    m_end.failingSend = 1;
    EXPECT_EQ(sendLines("abcdef", 6, 2), -1);
    m_end.failingSend = 2;
    m_end.failingResult = 0;
    EXPECT_EQ(sendLines("abcdef", 6, 2), 0);
    EXPECT_EQ(arrived(), "ab\r\n");
}

template <class End>
class ReceivingBytes : public EndTest<End> {
  protected:
    int receive(int len, int timeOut) { return this->m_end.Receive(m_buffer, len, timeOut); }
    char m_buffer[512] = "";
};
TYPED_TEST_SUITE(ReceivingBytes, BothEnds, EndNames);

TYPED_TEST(ReceivingBytes, ReturnsTheArrivedBytesUpToTheLength) {
    this->peerSends("hello");
    EXPECT_EQ(this->receive(2, 10), 2);
    EXPECT_STREQ(this->m_buffer, "he");
    EXPECT_EQ(this->receive(512, 10), 3);
    EXPECT_STREQ(this->m_buffer, "llo");
    EXPECT_THAT(this->m_end.codes, ElementsAre(0, 0)) << "of the waits";
}

TYPED_TEST(ReceivingBytes, RequestsNoWaitWithoutATimeOut) {
    this->peerSends("hello");
    EXPECT_EQ(this->receive(2, 0), 2);
    EXPECT_EQ(this->receive(3, -1), 3);
    EXPECT_THAT(this->m_end.codes, IsEmpty());
}

TYPED_TEST(ReceivingBytes, ReturnsZeroAtAClose) {
    this->m_peer.close();
    EXPECT_EQ(this->receive(512, 10), 0);
    EXPECT_EQ(this->receive(512, 0), 0);
}

TYPED_TEST(ReceivingBytes, EndsAtTheSocketsOwnTimeOut) {
    this->m_end.SetReceiveTimeOut(50);
    EXPECT_EQ(this->receive(512, 0), -1);
}

TYPED_TEST(ReceivingBytes, WaitsUntilTheSocketIsReadable) {
    EXPECT_EQ(this->m_end.WaitForReceive(0, 1000), UTE_ERROR);
    this->peerSends("x");
    EXPECT_EQ(this->m_end.WaitForReceive(0, 1000), UTE_SUCCESS);
    this->m_end.attach(INVALID_SOCKET);
    EXPECT_EQ(this->m_end.WaitForReceive(0, 0), UTE_ERROR);
    EXPECT_THAT(this->m_end.codes, ElementsAre(1, 0, 1));
}

TYPED_TEST(ReceivingBytes, LeavesDataWaitingUntilItIsRead) {
    EXPECT_FALSE(this->m_end.IsDataWaiting());
    this->peerSendsAndCloses("x");
    EXPECT_TRUE(this->m_end.IsDataWaiting());
    EXPECT_EQ(this->receive(1, 0), 1);
    this->awaitPeersEnd();
    EXPECT_FALSE(this->m_end.IsDataWaiting());
}

TYPED_TEST(ReceivingBytes, ClearsAllArrivedBytesInPiecesOf256) {
    this->peerSends(std::string(600, 'x'));
    EXPECT_EQ(this->m_end.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_THAT(this->m_end.receiveLengths, ElementsAre(256, 256, 256));
    EXPECT_FALSE(this->m_end.IsDataWaiting());
    const bool isClient = std::is_same_v<TypeParam, ClientEnd>;
    EXPECT_EQ(this->m_end.codes, std::vector<int>(isClient ? 1 : 0, UTE_SUCCESS));
}

TYPED_TEST(ReceivingBytes, StopsClearingWhenAReceiveFails) {
    this->peerSends(std::string(600, 'x'));
    this->m_end.failingReceive = 1;
    EXPECT_EQ(this->m_end.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_THAT(this->m_end.receiveLengths, ElementsAre(256, 256));
    EXPECT_TRUE(this->m_end.IsDataWaiting());
}

TYPED_TEST(ReceivingBytes, FailsHarmlesslyWithoutASocket) {
    this->m_end.attach(INVALID_SOCKET);
    EXPECT_EQ(this->m_end.sendBytes("lost", 4), TypeParam::kUnsent);
    EXPECT_EQ(this->m_end.ReceiveLine(this->m_buffer, 512, 0), 0);
    this->m_end.receiveLengths.clear();
    EXPECT_EQ(this->receive(512, 0), -1);
    EXPECT_FALSE(this->m_end.IsDataWaiting());
    EXPECT_EQ(this->m_end.IsConnected(), 0);
    EXPECT_EQ(this->m_end.ClearReceiveBuffer(), UTE_SUCCESS);
    EXPECT_EQ(this->m_end.receiveLengths.size(), 1u);
}

template <class End>
class IsConnected : public EndTest<End> {};
TYPED_TEST_SUITE(IsConnected, BothEnds, EndNames);

TYPED_TEST(IsConnected, IsTrueForAnIdleConnectionAndEndsBlocking) {
    for (const int mode : {0, 1}) {
        this->m_end.SetBlockingMode(mode);
        EXPECT_EQ(this->m_end.IsConnected(), 1);
        EXPECT_EQ(this->m_end.blockingMode(), 0);
        EXPECT_TRUE(this->isBlocking());
    }
}

TYPED_TEST(IsConnected, IsTrueUntilAllOfAPeerThatHasClosedIsRead) {
    this->peerSendsAndCloses("last words");
    EXPECT_EQ(this->m_end.IsConnected(), 1);
    char buffer[20];
    EXPECT_EQ(this->m_end.Receive(buffer, sizeof buffer, 10), 10) << "the peek took nothing";
    this->awaitPeersEnd();
    EXPECT_EQ(this->m_end.IsConnected(), 0);
    EXPECT_EQ(this->m_end.blockingMode(), 0);
}

template <class End>
class EndSettings : public EndTest<End> {};
TYPED_TEST_SUITE(EndSettings, BothEnds, EndNames);

TYPED_TEST(EndSettings, BlockingModeReachesTheSocketAndIsStored) {
    char byte = 0;
    this->m_end.SetBlockingMode(1);
    EXPECT_EQ(this->m_end.blockingMode(), 1);
    EXPECT_EQ(this->m_end.Receive(&byte, 1, 0), -1);
    EXPECT_EQ(port::lastSocketError(), WSAEWOULDBLOCK);
    this->m_end.SetBlockingMode(0);
    EXPECT_EQ(this->m_end.blockingMode(), 0);
    EXPECT_TRUE(this->isBlocking());
}

TYPED_TEST(EndSettings, TimeOutsThatTheSocketAcceptedAreStored) {
    this->m_end.SetReceiveTimeOut(1500);
    this->m_end.SetSendTimeOut(2500);
    EXPECT_EQ(this->optionOf(SO_RCVTIMEO), 1500);
    EXPECT_EQ(this->optionOf(SO_SNDTIMEO), 2500);
    this->m_end.attach(INVALID_SOCKET);
    this->m_end.SetReceiveTimeOut(1);
    this->m_end.SetSendTimeOut(2);
    EXPECT_EQ(this->m_end.receiveTimeOut(), 1500);
    EXPECT_EQ(this->m_end.sendTimeOut(), 2500);
}

TEST_F(Worker, BeginsWithoutSocketAndOwner) {
    const ProbeWorker worker;
    EXPECT_EQ(worker.socket(), 0u);
    EXPECT_EQ(worker.owner(), nullptr);
    EXPECT_EQ(worker.blockingMode(), 0);
    EXPECT_EQ(worker.abortFlag(), 0);
}

TEST_F(Worker, RepliesToALineAndReturns) {
    peerSends("hello\r\nand more");
    m_end.OnConnect();
    EXPECT_THAT(m_end.lineLengths, ElementsAre(100));
    EXPECT_FALSE(m_end.IsDataWaiting());
    EXPECT_THAT(m_end.sendLengths, ElementsAre(-1));
    EXPECT_EQ(arrived(), "Connect Successful ... Now Disconnecting.");
}

TEST_F(Worker, DoesNotReplyToAPeerThatSendsNothing) {
    m_peer.finishSending();
    m_end.OnConnect();
    m_end.OnMaxConnect();
    EXPECT_THAT(m_end.sends, IsEmpty());
}

TEST_F(Worker, RefusesAPeerWithoutAMessage) {
    peerSends("hello");
    m_end.OnMaxConnect();
    EXPECT_THAT(m_end.receiveLengths, ElementsAre(256));
    EXPECT_THAT(m_end.sendLengths, ElementsAre(0));
    EXPECT_EQ(arrived(), "");
}

TEST(WorkerHooks, ReturnFixedValues) {
    CUT_WSThread worker;
    EXPECT_EQ(worker.ReceiveFileStatus(5), 1);
    EXPECT_EQ(worker.SendFileStatus(5), 1);
    EXPECT_EQ(worker.OnError(42), 42);
    worker.OnReserved();
}

}  // namespace
