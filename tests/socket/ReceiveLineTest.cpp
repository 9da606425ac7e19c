// Lines that clients and workers receive.
#include <algorithm>
#include <thread>

#include "tests/socket/EndTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

template <class End>
class ReceivingLines : public EndTest<End> {
  protected:
    // The line. The rest of the buffer is marked with `fill`, so that a missing terminator and what
    // is written after it show.
    std::string line(int maxLen = 100, int timeOut = 10, char fill = '#') {
        m_buffer.assign(2000, fill);
        const int length = this->m_end.ReceiveLine(m_buffer.data(), maxLen, timeOut);
        const std::string line = m_buffer.substr(0, static_cast<size_t>(length));
        if (length > 0 && m_buffer[line.size()] != '\0') return "not terminated";
        // A worker looks at what has come in the buffer itself.
        const size_t end = std::is_same_v<End, WorkerEnd> ? static_cast<size_t>(std::max(maxLen, 0))
                                                          : line.size() + (length > 0 ? 1 : 0);
        return m_buffer.find_first_not_of(fill, end) == std::string::npos ? line : "touched";
    }

    std::string m_buffer;
};

TYPED_TEST_SUITE(ReceivingLines, BothEnds, EndNames);

TYPED_TEST(ReceivingLines, EndWithTheirLineFeedOrWhereTheBufferEnds) {
    const std::string withZero("a\0b\r\n", 5);
    const std::string isLong = std::string(1500, 'x') + "\r\n";
    const struct {
        std::string sent;
        int maxLen;
        std::vector<std::string> lines;
    } rows[] = {
        {"first\r\n\r\n", 100, {"first\r\n", "\r\n"}},
        {"abcdefgh\r\nijkl\r\n", 5, {"abcd", "efgh", "\r\n", "ijkl", "\r\n"}},
        {"abc\r\n", 6, {"abc\r\n"}},
        {"ab\n", 2, {"a", "b", "\n"}},
        {withZero, 100, {withZero}},
        {isLong + "next\r\n", 1900, {isLong, "next\r\n"}},
    };
    for (const auto& row : rows) {
        this->peerSends(row.sent + "rest");
        for (const std::string& line : row.lines) EXPECT_EQ(this->line(row.maxLen), line);
        char rest[10];
        EXPECT_EQ(this->m_end.Receive(rest, sizeof rest, 10), 4) << row.sent;
    }
}

TYPED_TEST(ReceivingLines, ReadsNothingIntoABufferWithoutSpace) {
    this->peerSends("abc\r\n");
    for (const int maxLen : {1, 0, -7}) EXPECT_EQ(this->line(maxLen), "");
    EXPECT_THAT(this->m_end.codes, IsEmpty()) << "no wait";
    EXPECT_EQ(this->line(), "abc\r\n");
}

TYPED_TEST(ReceivingLines, ReturnsTheBytesBeforeACloseAndWaitsOnceBeforeEachPiece) {
    this->peerSendsAndCloses("unfinished");
    EXPECT_EQ(this->line(), "unfinished");
    EXPECT_THAT(this->m_end.codes, ElementsAre(0, 0));
    EXPECT_EQ(this->line(), "");
}

TYPED_TEST(ReceivingLines, RequestsNoWaitWithoutATimeOut) {
    this->peerSends("abc\r\n");
    EXPECT_EQ(this->line(100, 0), "abc\r\n");
    EXPECT_THAT(this->m_end.codes, IsEmpty());
}

TYPED_TEST(ReceivingLines, ReadsNothingOnceAborted) {
    this->peerSends("abc\r\n");
    this->m_end.setAborted(true);
    EXPECT_EQ(this->line(), "");
    this->m_end.setAborted(false);
    EXPECT_EQ(this->line(), "abc\r\n");
}

class ClientReceiveLine : public ReceivingLines<ClientEnd> {
  protected:
    // One more piece is sent each time that the client begins to wait.
    void sendAtEachWait(std::vector<std::string> pieces) {
        m_end.beforeWait = [this, pieces, next = size_t{0}]() mutable {
            if (next < pieces.size()) peerSends(pieces[next++]);
        };
    }
};

TEST_F(ClientReceiveLine, EndsAtALineFeedAlone) {
    peerSends("second\n\nrest");
    EXPECT_EQ(line(), "second\n");
    EXPECT_EQ(line(), "\n");
}

TEST_F(ClientReceiveLine, JoinsALineFromItsFragments) {
    const std::string text = "a line in pieces\r\nand one more\r\n";
    for (const size_t size : {1u, 2u, 3u, 5u, 16u, 17u, 18u}) {
        std::vector<std::string> pieces;
        for (size_t at = 0; at < text.size(); at += size) pieces.push_back(text.substr(at, size));
        sendAtEachWait(pieces);
        EXPECT_EQ(line(), "a line in pieces\r\n") << "pieces of " << size;
        EXPECT_EQ(line(), "and one more\r\n") << "pieces of " << size;
    }
}

TEST_F(ClientReceiveLine, CutsALineWhoseRestDoesNotFitAfterItsBeginning) {
    sendAtEachWait({"abc", "defgh\n"});
    EXPECT_EQ(line(6), "abcde");
    EXPECT_EQ(line(6), "fgh\n");
}

TEST_F(ClientReceiveLine, ReturnsTheBytesBeforeAnAbort) {
    peerSends("abc");
    m_end.abortAfter = 1;
    EXPECT_EQ(line(), "abc");
}

using WorkerReceiveLine = ReceivingLines<WorkerEnd>;

TEST_F(WorkerReceiveLine, TakesOnlyThePairForALineEnd) {
    peerSends("a\nb\rc\r\n");
    EXPECT_EQ(line(), "a\nb\rc\r\n");
}

TEST_F(WorkerReceiveLine, JoinsALineFromPartsAndDoesNotRecogniseALineEndThatIsSplit) {
    const std::jthread sender([&] {
        m_peer.send("ab\r");
        port::sleep(100);
        m_peer.send("\ncd\r\n");
    });
    EXPECT_EQ(line(), "ab\r\ncd\r\n");
}

TEST_F(WorkerReceiveLine, TakesALastCarriageReturnByWhatTheBufferHeldAfterIt) {
    peerSends("ab\r");
    EXPECT_EQ(line(100, 1, '\n'), "ab\r\n");
    EXPECT_FALSE(m_end.IsDataWaiting());
}

TEST_F(WorkerReceiveLine, LooksForNoLineEndBeyondTheBuffer) {
    peerSends("abc\r\n");
    EXPECT_EQ(line(5, 1, '\n'), "abc\r");
}

}  // namespace
