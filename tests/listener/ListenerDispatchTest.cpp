#include <climits>
#include <optional>

#include "tests/listener/ListenerTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/ScriptedSource.h"

namespace {

// A message file as bytes in hex.
std::string hexOf(const std::string& bytes) {
    return toHex(Bytes(bytes.begin(), bytes.end()));
}

class ListenerDispatch : public ListenerTest {
  protected:
    using Outline = std::vector<std::pair<int, size_t>>;

    void SetUp() override {
        ListenerTest::SetUp();
        m_peer.emplace(connect());
    }
    void send(const std::string& bytes) { m_peer->send(bytes); }
    auto posted() { return postedFor(*m_peer); }
    // The one message there is.
    PostedMessage onlyPosted() {
        const auto all = posted();
        EXPECT_EQ(all.size(), 1u);
        return all.at(0);
    }
    // The actions and payload sizes of what was posted.
    Outline outline() {
        Outline all;
        for (const auto& message : posted())
            all.emplace_back(message.action(), message.payload().size());
        return all;
    }

    std::optional<peers::Connection> m_peer;
};

TEST_F(ListenerDispatch, RepliesToAProbeReadsItsBodyAndPostsNothing) {
    send(kProbe);
    EXPECT_EQ(hexOf(m_peer->receive()), "00 02 00 00");
    send(frame(1, frame(50)));
    EXPECT_EQ(m_peer->receive(), kAlive);
    EXPECT_TRUE(posted().empty());
}

TEST_F(ListenerDispatch, ForwardsTheNineNotificationsInSeparateMessageFiles) {
    for (int action = 50; action <= 58; ++action) send(frame(action, action == 50 ? "" : "body"));
    const auto all = posted();
    ASSERT_EQ(all.size(), 9u);
    EXPECT_EQ(hexOf(all[0].bytes), "32 00 00 00 00 00 00 00");
    EXPECT_EQ(hexOf(all[7].bytes), hex("39 00 00 00 04 00 00 00 'body'"));
    for (int i = 1; i < 9; ++i) EXPECT_EQ(all[static_cast<size_t>(i)].bytes, frame(50 + i, "body"));
}

TEST_F(ListenerDispatch, ReadsOtherActionsInFullAndDropsThem) {
    for (const int action : {49, 59, 0, 2, 11, 70, 106, 666, -1, -50, INT_MIN, INT_MIN + 50,
                             INT_MAX, 50 + 256, 50 << 8})
        send(frame(action, frame(51, "inner")));
    send(frame(52));
    EXPECT_EQ(outline(), (Outline{{52, 0}}));
}

TEST_F(ListenerDispatch, ANegativeLengthIsAnEmptyBody) {
    send(wireOf(50) + wireOf(-1) + wireOf(51) + wireOf(INT_MIN) + frame(52, "abc"));
    EXPECT_EQ(outline(), (Outline{{50, 0}, {51, 0}, {52, 3}}));
}

TEST_F(ListenerDispatch, ALargeBodyArrivesAsItWasSent) {
    const std::string body = patternOf(3 * 1024 * 1024 + 17);
    send(frame(54, body));
    const PostedMessage posted = onlyPosted();
    EXPECT_EQ(posted.bytes.size(), body.size() + 8);
    EXPECT_TRUE(posted.payload() == body);
    EXPECT_EQ(hexOf(posted.bytes.substr(0, 8)), "36 00 00 00 11 00 30 00");
}

TEST_F(ListenerDispatch, ATruncatedBodyIsForwarded) {
    send(wireOf(55) + wireOf(1000) + "only this");
    m_peer->close();
    EXPECT_EQ(hexOf(m_window.awaitMessages(1).at(0).bytes),
              hex("37 00 00 00 09 00 00 00 'only this'"));
    EXPECT_TRUE(m_listener.awaitWorkers(0));
}

TEST_F(ListenerDispatch, ATruncatedLengthIsForwardedAsAnEmptyBody) {
    m_listener.setLongestBody(10);  // of no concern to what is no length
    send(wireOf(56) + std::string(3, '\x07'));
    m_peer->close();
    EXPECT_EQ(hexOf(m_window.awaitMessages(1).at(0).bytes), "38 00 00 00 00 00 00 00");
}

class ListenerReading : public ScriptedListenerTest {
  protected:
    std::vector<Asked> asked() { return m_listener.script->all(); }
    bool awaitAsked(size_t count) {
        return eventually([&] { return asked().size() >= count; }, kGenerously);
    }
};

TEST_F(ListenerReading, ReceivesEachPartWithItsTimeOut) {
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(10) + "1234");
    ASSERT_TRUE(awaitAsked(4));
    peer.send("567890");
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload(), "1234567890");
    std::vector<std::pair<int, int>> lengthsAndTimes;
    for (const Asked& one : asked()) lengthsAndTimes.emplace_back(one.length, one.timeOut);
    lengthsAndTimes.resize(4);
    EXPECT_EQ(lengthsAndTimes,
              (std::vector<std::pair<int, int>>{{4, 0}, {4, 15}, {10, 30}, {6, 30}}));
}

TEST_F(ListenerReading, AcceptsATruncatedAction) {
    auto peer = connect();
    const auto start = port::milliseconds();
    peer.send("\x01");
    ASSERT_TRUE(awaitAsked(2));
    EXPECT_GE(port::milliseconds() - start, 900u);
    EXPECT_LT(port::milliseconds() - start, 10000u);
    peer.send(wireOf(3) + "abc" + frame(52, "good"));
    EXPECT_EQ(peer.receive(), kAlive);
    const auto all = postedFor(peer);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].payload(), "good");
}

TEST_F(ListenerReading, FinishesTheCurrentMessageWhenAPauseBegins) {
    HostWindow consumesNothing;
    consumesNothing.hold();
    consumesNothing.attachTo(m_listener);
    auto peer = connect();
    const std::string whole = frame(50, "whole");
    peer.send(whole.substr(0, 5));
    ASSERT_TRUE(awaitAsked(2));
    m_listener.pause(true);
    peer.send(whole.substr(5) + kProbe);
    EXPECT_EQ(consumesNothing.awaitMessages(1).at(0).payload(), "whole");
    port::sleep(250);
    EXPECT_EQ(m_listener.script->rounds(), 1);
    consumesNothing.detachFrom(m_listener);
    EXPECT_EQ(peer.receive(), kAlive);
}

TEST_F(ListenerReading, HasAnActionOnlyWhileItHandlesAMessage) {
    auto peer = connect();
    peer.send(frame(59, "x"));
    EXPECT_TRUE(isAlive(peer));
    std::vector<int> actions;
    for (const Asked& one : asked()) actions.push_back(one.action);
    actions.resize(5);
    EXPECT_EQ(actions, (std::vector<int>{-1, 59, 59, -1, 1}));
}

TEST_F(ListenerReading, AllocatesForAHugeLengthOnlyAsBytesArrive) {
    m_listener.setLongestBody(INT_MAX);
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(INT_MAX) + std::string(300000, 'z'));
    peer.close();
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload().size(), 300000u);
    for (const Asked& one : asked()) EXPECT_LT(one.length, 512 * 1024);
}

class ListenerLongestBody : public ScriptedListenerTest {
  protected:
    // Whether the connection ends with nothing read but the header, and nothing posted.
    bool isRefused(int action, int length) {
        auto peer = connect();
        const size_t before = m_listener.script->all().size();
        peer.send(wireOf(action) + wireOf(length) + "beginning");
        const bool isClosed = peer.awaitClose();
        m_window.settle();
        return isClosed && m_listener.script->all().size() == before + 2 && m_window.count() == 0;
    }
};

TEST_F(ListenerLongestBody, Is64MiBUnlessSet) {
    EXPECT_EQ(m_listener.getLongestBody(), 67108864u);
    EXPECT_TRUE(isRefused(50, 67108865));
    EXPECT_TRUE(isRefused(50, INT_MAX));
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(67108864) + "a part");
    peer.close();
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload(), "a part");
}

TEST_F(ListenerLongestBody, IsWhatTheHostSets) {
    m_listener.setLongestBody(1000);
    EXPECT_EQ(m_listener.getLongestBody(), 1000u);
    for (const int action : {50, 1, 7}) EXPECT_TRUE(isRefused(action, 1001)) << action;
    auto peer = connect();
    peer.send(frame(50, std::string(1000, 'x')));
    EXPECT_EQ(postedFor(peer).at(0).payload(), std::string(1000, 'x'));
}

TEST_F(ListenerLongestBody, MayBeNone) {
    m_listener.setLongestBody(0);
    EXPECT_TRUE(isRefused(50, 1));
    auto peer = connect();
    peer.send(frame(50) + wireOf(51) + wireOf(-1) + wireOf(52) + wireOf(INT_MIN));
    EXPECT_EQ(postedFor(peer).size(), 3u);
}

TEST_F(ListenerLongestBody, EndsNoOtherConnection) {
    m_listener.setLongestBody(10);
    auto other = connect();
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(11));
    EXPECT_TRUE(peer.awaitClose());
    EXPECT_TRUE(isAlive(other));
}

}  // namespace
