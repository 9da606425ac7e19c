#include <gtest/gtest.h>

#include <climits>

#include "tests/listener/ListenerTest.h"
#include "tests/support/Bytes.h"

namespace {

// A message file as bytes in hex.
std::string hexOf(const std::string& bytes) {
    return toHex(Bytes(bytes.begin(), bytes.end()));
}

std::string patternOf(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 251);
    return bytes;
}

class ListenerDispatch : public ListenerTest {
  protected:
    void SetUp() override {
        ListenerTest::SetUp();
        m_peer.emplace(connect());
    }
    void send(const std::string& bytes) { m_peer->send(bytes); }
    std::vector<PostedMessage> posted() { return postedFor(*m_peer); }
    // The actions and payload sizes of what was posted.
    std::vector<std::pair<int, size_t>> outline() {
        std::vector<std::pair<int, size_t>> all;
        for (const auto& message : posted())
            all.emplace_back(message.action(), message.payload().size());
        return all;
    }
    using Outline = std::vector<std::pair<int, size_t>>;

    std::optional<peers::Connection> m_peer;
};

TEST_F(ListenerDispatch, AnswersAProbeAndPostsNothing) {
    send(kProbe);
    EXPECT_EQ(hexOf(m_peer->receive()), "00 02 00 00");
    EXPECT_TRUE(posted().empty());
}

TEST_F(ListenerDispatch, ReadsTheBodyOfAProbe) {
    send(frame(1, frame(50)));
    EXPECT_EQ(m_peer->receive(), kAlive);
    EXPECT_TRUE(posted().empty());
}

TEST_F(ListenerDispatch, ForwardsANotificationWithoutABody) {
    send(frame(50));
    const auto all = posted();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(hexOf(all[0].bytes), "32 00 00 00 00 00 00 00");
    EXPECT_EQ(all[0].message, NySe::_TM_NYSERVERMESSAGE);
    EXPECT_EQ(all[0].size, 8u);
}

TEST_F(ListenerDispatch, WrapsTheBodyInAMessageFileOfItsOwn) {
    send(frame(57, "body"));
    const auto all = posted();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(hexOf(all[0].bytes), hex("39 00 00 00 04 00 00 00 'body'"));
    EXPECT_EQ(all[0].size, 12u);
}

TEST_F(ListenerDispatch, ForwardsTheNineNotificationsAlike) {
    for (int action = 50; action <= 58; ++action) send(frame(action, "x"));
    EXPECT_EQ(
        outline(),
        (Outline{{50, 1}, {51, 1}, {52, 1}, {53, 1}, {54, 1}, {55, 1}, {56, 1}, {57, 1}, {58, 1}}));
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

TEST_F(ListenerDispatch, ANegativeLengthLeavesTheNextConnectionAlone) {
    send(wireOf(50) + wireOf(-1));
    ASSERT_EQ(m_window.awaitMessages(1).size(), 1u);
    auto next = connect();
    next.send(frame(54, "good"));
    EXPECT_EQ(postedFor(next).back().payload(), "good");
}

TEST_F(ListenerDispatch, ABodyMayComeInPieces) {
    const std::string body = patternOf(20);
    const std::string whole = frame(53, body);
    send(whole.substr(0, 8));
    for (size_t i = 8; i < whole.size(); i += 3) {
        ::Sleep(5);
        send(whole.substr(i, 3));
    }
    EXPECT_EQ(posted().at(0).payload(), body);
}

TEST_F(ListenerDispatch, ALargeBodyArrivesAsItWasSent) {
    const std::string body = patternOf(3 * 1024 * 1024 + 17);
    send(frame(54, body));
    const auto all = posted();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].size, body.size() + 8);
    EXPECT_TRUE(all[0].payload() == body);
    EXPECT_EQ(hexOf(all[0].bytes.substr(0, 8)), "36 00 00 00 11 00 30 00");
}

TEST_F(ListenerDispatch, ABodyThatIsCutOffIsForwardedAsFarAsItCame) {
    send(wireOf(55) + wireOf(1000) + "only this");
    m_peer->close();
    const auto all = m_window.awaitMessages(1);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(hexOf(all[0].bytes), hex("37 00 00 00 09 00 00 00 'only this'"));
    EXPECT_TRUE(m_listener.awaitWorkers(0));
}

TEST_F(ListenerDispatch, ALengthThatIsCutOffIsForwardedEmpty) {
    m_listener.setLongestBody(10);  // of no concern to what is no length
    send(wireOf(56) + std::string(3, '\x07'));
    m_peer->close();
    EXPECT_EQ(hexOf(m_window.awaitMessages(1).at(0).bytes), "38 00 00 00 00 00 00 00");
}

TEST_F(ListenerDispatch, ServesEachConnectionByItself) {
    auto other = connect();
    send(wireOf(50) + wireOf(100) + "half");
    EXPECT_TRUE(isAlive(other));
    send(std::string(96, '.'));
    EXPECT_EQ(outline(), (Outline{{50, 100}}));
}

TEST_F(ListenerDispatch, AMessageThatHasNoBytesMakesTheNextOneNoLess) {
    send(frame(50) + frame(50, "1") + kProbe + frame(50));
    EXPECT_EQ(m_peer->receive(), kAlive);
    EXPECT_EQ(outline(), (Outline{{50, 0}, {50, 1}, {50, 0}}));
}

using ListenerReading = ScriptedListenerTest;

TEST_F(ListenerReading, AsksForWhatItNeedsWithinItsTimes) {
    auto peer = connect();
    peer.send(frame(50, "12345"));
    m_window.awaitMessages(1);
    const auto asked = m_listener.script->all();
    ASSERT_GE(asked.size(), 3u);
    EXPECT_EQ(std::make_pair(asked[0].length, asked[0].timeOut), std::make_pair(4, 0));
    EXPECT_EQ(std::make_pair(asked[1].length, asked[1].timeOut), std::make_pair(4, 15));
    EXPECT_EQ(std::make_pair(asked[2].length, asked[2].timeOut), std::make_pair(5, 30));
}

TEST_F(ListenerReading, TakesAnActionThatComesShort) {
    auto peer = connect();
    const auto start = ::GetTickCount64();
    peer.send("\x01");
    ASSERT_TRUE(eventually([&] { return m_listener.script->all().size() == 2; }, kGenerously));
    EXPECT_GE(::GetTickCount64() - start, 900u);
    EXPECT_LT(::GetTickCount64() - start, 10000u);
    peer.send(wireOf(3) + "abc" + frame(52, "good"));
    EXPECT_EQ(peer.receive(), kAlive);
    const auto all = postedFor(peer);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].payload(), "good");
}

TEST_F(ListenerReading, AsksForTheRestOfABody) {
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(10) + "1234");
    ASSERT_TRUE(eventually([&] { return m_listener.script->all().size() == 4; }));
    peer.send("567890");
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload(), "1234567890");
    EXPECT_EQ(m_listener.script->all()[3].length, 6);
    EXPECT_EQ(m_listener.script->all()[3].timeOut, 30);
}

TEST_F(ListenerReading, FinishesTheMessageThatIsBegunWhenAPauseComes) {
    MainWindow consumesNothing;
    m_listener.setAppWnd(consumesNothing.wnd());
    auto peer = connect();
    const auto awaitAsked = [&](size_t count) {
        return eventually([&] { return m_listener.script->all().size() >= count; }, kGenerously);
    };
    const std::string whole = frame(50, "whole");
    peer.send(whole.substr(0, 5));
    ASSERT_TRUE(awaitAsked(2));
    m_listener.pause(true);
    peer.send(whole.substr(5) + kProbe);
    EXPECT_EQ(consumesNothing.awaitMessages(1).at(0).payload(), "whole");
    ::Sleep(250);
    EXPECT_EQ(m_listener.script->rounds(), 1);
    m_listener.setAppWnd(nullptr);
    EXPECT_EQ(peer.receive(), kAlive);
}

TEST_F(ListenerReading, KnowsItsActionOnlyWhileItHandlesAMessage) {
    auto peer = connect();
    peer.send(frame(59, "x"));
    EXPECT_TRUE(isAlive(peer));
    std::vector<int> actions;
    for (const Asked& asked : m_listener.script->all()) actions.push_back(asked.action);
    actions.resize(5);
    EXPECT_EQ(actions, (std::vector<int>{-1, 59, 59, -1, 1}));
}

TEST_F(ListenerReading, BelievesInAHugeLengthOnlyAsFarAsBytesArrive) {
    m_listener.setLongestBody(INT_MAX);
    auto peer = connect();
    peer.send(wireOf(50) + wireOf(INT_MAX) + std::string(300000, 'z'));
    peer.close();
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload().size(), 300000u);
    for (const Asked& asked : m_listener.script->all()) EXPECT_LT(asked.length, 512 * 1024);
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
    const auto all = postedFor(peer);
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].payload(), std::string(1000, 'x'));
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
