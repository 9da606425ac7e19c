#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <future>
#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

class ClientReceiveLine : public testing::Test {
  protected:
    void connectTo(const peers::Peer& peer) {
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
    }
    // The line. The rest of the buffer is marked, so that a missing terminator and whatever is
    // written behind it show.
    std::string line(int maxLen = 100, int timeOut = 10) {
        return lineOf(m_client, maxLen, timeOut);
    }
    std::string lineOf(CUT_WSClient& client, int maxLen, int timeOut) {
        std::memset(m_buffer, '#', sizeof m_buffer);
        const int length = client.ReceiveLine(m_buffer, maxLen, timeOut);
        const char* end = m_buffer + length;
        const char* const bufferEnd = std::end(m_buffer);
        if (length > 0 && *end++ != '\0') return "not terminated";
        if (std::any_of(end, bufferEnd, [](char c) { return c != '#'; })) return "touched";
        return std::string(m_buffer, static_cast<std::size_t>(length));
    }

    ProbeClient m_client;
    char m_buffer[2000];
};

TEST_F(ClientReceiveLine, ReadsUpToAndWithTheLineFeed) {
    peers::Peer peer(peers::sending("first\r\nsecond\nrest"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    EXPECT_EQ(line(), "first\r\n");
    EXPECT_EQ(line(), "second\n");
    char rest[10];
    EXPECT_EQ(m_client.Receive(rest, sizeof rest, 10), 4) << "nothing behind the line is taken";
}

TEST_F(ClientReceiveLine, ReadsAnEmptyLine) {
    peers::Peer peer(peers::sending("\n\r\n"));
    connectTo(peer);
    EXPECT_EQ(line(), "\n");
    EXPECT_EQ(line(), "\r\n");
}

TEST_F(ClientReceiveLine, JoinsALineFromItsFragments) {
    const std::string text = "a line in pieces\r\nand one more\r\n";
    for (std::size_t size : {1u, 2u, 3u, 5u, 16u, 17u, 18u}) {
        std::vector<std::string> pieces;
        for (std::size_t at = 0; at < text.size(); at += size) {
            pieces.push_back(text.substr(at, size));
        }
        peers::Peer peer(peers::sendingPieces(pieces, 1));
        connectTo(peer);
        EXPECT_EQ(line(), "a line in pieces\r\n") << "pieces of " << size;
        EXPECT_EQ(line(), "and one more\r\n") << "pieces of " << size;
        m_client.CloseConnection();
    }
}

TEST_F(ClientReceiveLine, CutsALineThatDoesNotFit) {
    peers::Peer peer(peers::sending("abcdefgh\r\n"));
    connectTo(peer);
    EXPECT_EQ(line(5), "abcd");
    EXPECT_EQ(line(5), "efgh");
    EXPECT_EQ(line(5), "\r\n");
}

TEST_F(ClientReceiveLine, TakesALineThatJustFits) {
    peers::Peer peer(peers::sending("abc\r\n"));
    connectTo(peer);
    EXPECT_EQ(line(6), "abc\r\n");
}

TEST_F(ClientReceiveLine, LeavesALineFeedThatJustDoesNotFit) {
    peers::Peer peer(peers::sending("abc\r\nd\n"));
    connectTo(peer);
    EXPECT_EQ(line(5), "abc\r");
    EXPECT_EQ(line(5), "\n");
    EXPECT_EQ(line(5), "d\n");
}

TEST_F(ClientReceiveLine, TakesOneByteIntoABufferOfTwo) {
    peers::Peer peer(peers::sending("ab\n"));
    connectTo(peer);
    for (const char* byte : {"a", "b", "\n"}) EXPECT_EQ(line(2), byte);
}

// Lets its peer send the rest of the line when it waits for the second time.
class LineInTwoParts : public CUT_WSClient {
  public:
    explicit LineInTwoParts(std::promise<void>& sendRest) : m_sendRest(sendRest) {}
    int WaitForReceive(long seconds, long microseconds) override {
        if (++m_waits == 2) m_sendRest.set_value();
        return CUT_WSClient::WaitForReceive(seconds, microseconds);
    }

  private:
    std::promise<void>& m_sendRest;
    int m_waits = 0;
};

TEST_F(ClientReceiveLine, CutsALineWhoseRestDoesNotFitBehindItsBeginning) {
    std::promise<void> sendRest;
    peers::Peer peer([&](peers::Connection& connection) {
        connection.send("abc");
        sendRest.get_future().wait_for(peers::kTimeOut);
        connection.send("defgh\n");
        connection.receiveAll();
    });
    LineInTwoParts client(sendRest);
    ASSERT_EQ(client.Connect(peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
    EXPECT_EQ(lineOf(client, 6, 10), "abcde");
    EXPECT_EQ(lineOf(client, 6, 10), "fgh\n");
}

TEST_F(ClientReceiveLine, ReadsNothingIntoABufferWithoutRoom) {
    peers::Peer peer(peers::sending("abc\n"));
    connectTo(peer);
    for (const int maxLen : {1, 0, -7}) EXPECT_EQ(line(maxLen), "");
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{});
    EXPECT_EQ(line(), "abc\n");
}

TEST_F(ClientReceiveLine, KeepsZeroBytes) {
    peers::Peer peer(peers::sending(std::string("a\0b\n", 4)));
    connectTo(peer);
    EXPECT_EQ(line(), std::string("a\0b\n", 4));
}

TEST_F(ClientReceiveLine, GivesWhatCameBeforeAClose) {
    peers::Peer peer(peers::sendingAndClosing("unfinished"));
    connectTo(peer);
    EXPECT_EQ(line(), "unfinished");
    EXPECT_EQ(line(), "");
}

TEST_F(ClientReceiveLine, GivesNothingOnAClosedSocket) {
    EXPECT_EQ(line(100, 0), "");
}

TEST_F(ClientReceiveLine, WaitsOnceBeforeEachPiece) {
    peers::Peer peer(peers::sendingAndClosing("unfinished"));
    connectTo(peer);
    line(100, 9);
    EXPECT_EQ(m_client.receiveWaits, (std::vector<long>{9, 9}));
}

TEST_F(ClientReceiveLine, DoesNotAskForAWaitWithoutATimeOut) {
    peers::Peer peer(peers::sending("abc\n"));
    connectTo(peer);
    EXPECT_EQ(line(100, 0), "abc\n");
    EXPECT_EQ(m_client.receiveWaits, std::vector<long>{});
}

TEST_F(ClientReceiveLine, StopsWhenTheOverriddenWaitSaysSo) {
    peers::Peer peer(peers::sending("abc\n"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    m_client.isDeaf = true;
    EXPECT_EQ(line(), "");
    m_client.isDeaf = false;
    EXPECT_EQ(line(), "abc\n");
}

TEST_F(ClientReceiveLine, StopsWhenAborted) {
    peers::Peer peer(peers::sending("abc\n"));
    connectTo(peer);
    m_client.abortAfter = 0;
    EXPECT_EQ(line(), "");
    m_client.abortAfter = -1;
    EXPECT_EQ(line(), "abc\n");
}

TEST_F(ClientReceiveLine, GivesWhatCameBeforeAnAbort) {
    peers::Peer peer(peers::sending("abc"));
    connectTo(peer);
    m_client.abortAfter = 1;
    EXPECT_EQ(line(), "abc");
}

TEST_F(ClientReceiveLine, ReadsALongLine) {
    const std::string text = std::string(1500, 'x') + "\r\n";
    peers::Peer peer(peers::sending(text + "next\r\n"));
    connectTo(peer);
    EXPECT_EQ(line(1900), text);
    EXPECT_EQ(line(1900), "next\r\n");
}

}  // namespace
