#include <gtest/gtest.h>

#include "tests/listener/LimitSetting.h"
#include "tests/listener/ListenerTest.h"

namespace {

// The window takes its messages and tells nobody; the test consumes them.
class ListenerBackPressure : public testing::Test {
  protected:
    void SetUp() override {
        m_listener.setAppWnd(m_window.wnd());
        ASSERT_TRUE(m_listener.start());
        connect(2);
    }
    void TearDown() override { m_listener.setAppWnd(nullptr); }

    void connect(int count) {
        for (int i = 0; i < count; ++i) m_peers.push_back(m_listener.connection());
        ASSERT_TRUE(m_listener.awaitWorkers(static_cast<int>(m_peers.size())));
    }
    void post(int times = 1) {
        for (int i = 0; i < times; ++i) {
            CMemFile file;
            file.Write("x", 1);
            m_listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
        }
    }
    void consume(int times = 1) {
        for (int i = 0; i < times; ++i) m_listener.decreasePostMsgCount();
    }
    void expectPausedAbove(int limit) {
        const size_t before = m_window.count();
        const size_t posted = static_cast<size_t>(limit) + 2;
        post(limit);
        EXPECT_EQ(m_listener.pauses(), kNone);
        post();
        EXPECT_EQ(m_listener.pauses(), kAll);
        post();  // which goes on during a pause
        EXPECT_EQ(m_listener.getPostMsgCount(), limit + 2);
        EXPECT_EQ(m_window.awaitMessages(before + posted).size(), before + posted);
        consume(limit + 1);
        EXPECT_EQ(m_listener.pauses(), kAll);
        consume();
        EXPECT_EQ(m_listener.pauses(), kNone);
    }

    static inline const std::vector<bool> kAll{true, true};
    static inline const std::vector<bool> kNone{false, false};

    peers::WinsockSession m_winsock;
    LimitSetting m_setting{3600};
    ProbeListener m_listener;
    MainWindow m_window;
    std::vector<peers::Connection> m_peers;
};

TEST_F(ListenerBackPressure, PausesAbove3240AndResumesAfterTheLast) {
    expectPausedAbove(3240);
}

TEST_F(ListenerBackPressure, PausesAgainAsBefore) {
    m_setting.set(30);
    expectPausedAbove(27);
    expectPausedAbove(27);
}

TEST_F(ListenerBackPressure, PausesWithEachMessageWhenTheLimitIsNone) {
    m_setting.set(1);
    expectPausedAbove(0);
    expectPausedAbove(0);
}

TEST_F(ListenerBackPressure, ASurplusConsumptionResumesAndCountsNothing) {
    m_listener.pause(true);
    consume();
    EXPECT_EQ(m_listener.pauses(), kNone);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerBackPressure, AWorkerThatStartsDuringAPauseReadsUntilTheNextCall) {
    m_setting.set(10);
    post(10);
    connect(1);
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{false, true, true}));
    m_peers.back().send(kProbe);
    EXPECT_EQ(m_peers.back().receive(), kAlive);
    post();
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{true, true, true}));
}

TEST_F(ListenerBackPressure, StopsItsSenderUntilTheWindowHasConsumedTheBacklog) {
    m_setting.set(100);
    std::string stream;
    for (int i = 0; i < 200; ++i) stream += frame(50 + i % 9, wireOf(i) + wireOf(i));
    m_peers[0].send(stream);
    m_window.awaitMessages(91);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 91u);
    consume(90);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 91u);
    consume();
    EXPECT_EQ(m_window.awaitMessages(182).size(), 182u);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 182u);
    consume(91);
    EXPECT_EQ(m_window.awaitMessages(200).size(), 200u);
    for (size_t i = 0; i < 200; ++i)
        EXPECT_EQ(m_window.messages()[i].payload().substr(0, 4), wireOf(static_cast<int>(i)));
}

// The same object may have another window by now: the first may have been destroyed and created
// again, and the messages with it.
TEST_F(ListenerBackPressure, MessagesOfAReplacedWindowAreNoLongerCounted) {
    m_setting.set(10);
    MainWindow next;
    for (MainWindow* window : {&m_window, &next}) {
        post(12);
        ASSERT_EQ(m_listener.pauses(), kAll);
        m_listener.setAppWnd(window->wnd());
        EXPECT_EQ(m_listener.getPostMsgCount(), 0);
        EXPECT_EQ(m_listener.pauses(), kNone);
    }
    m_peers[0].send(frame(50, "for the next"));
    EXPECT_EQ(next.awaitMessages(1).at(0).payload(), "for the next");
    m_listener.setAppWnd(nullptr);
}

TEST_F(ListenerBackPressure, ConsumptionByAReplacedWindowCountsNoLowerThanZero) {
    post(3);
    m_listener.setAppWnd(nullptr);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    consume(3);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    m_listener.setAppWnd(m_window.wnd());
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

// Each message pauses the workers until the window has consumed it; a worker that notices only at
// the end of a round of 100 ms takes 10 s for a hundred.
class ListenerResume : public ListenerTest {
  protected:
    LimitSetting m_setting{1};
};

TEST_F(ListenerResume, IsNoticedAtOnce) {
    auto peer = connect();
    std::string stream;
    for (int i = 0; i < 100; ++i) stream += frame(50, wireOf(i));
    const auto start = ::GetTickCount64();
    peer.send(stream);
    EXPECT_EQ(m_window.awaitMessages(100).size(), 100u);
    EXPECT_LT(::GetTickCount64() - start, 5000u);
}

TEST_F(ListenerBackPressure, ASenderIsStoppedByTheTransportAndLosesNothing) {
    constexpr int kFrames = 512;  // more than any transport takes unread
    const std::string body(65528, 'b');
    m_listener.pause(true);
    std::atomic<int> sent = 0;
    std::jthread sender([&] {
        for (; sent < kFrames; ++sent) m_peers[0].send(frame(54, body));
    });
    int before = -1;
    while (before != sent) {
        before = sent;
        ::Sleep(500);
    }
    EXPECT_LT(sent, kFrames);
    EXPECT_EQ(m_window.count(), 0u);
    m_listener.pause(false);
    const auto all = m_window.awaitMessages(kFrames);
    ASSERT_EQ(all.size(), size_t{kFrames});
    for (const auto& message : all) EXPECT_TRUE(message.payload() == body);
}

// Other workers than the listener's own may be in the list.
class PlainWorker : public CUT_WSThread {
  public:
    void OnConnect() override {
        char byte;
        Receive(&byte, 1, 0);
    }
};
class PlainListener : public ProbeListener {
  public:
    ~PlainListener() override { endConnections(); }

  protected:
    CUT_WSThread* CreateInstance() override { return new PlainWorker; }
};

TEST(ListenerBackPressureOfOthers, DoesNotAffectWorkersOfOtherKinds) {
    const peers::WinsockSession winsock;
    PlainListener listener;
    ASSERT_TRUE(listener.start());
    auto peer = listener.connection();
    ASSERT_TRUE(listener.awaitWorkers(1));
    listener.pause(true);
    peer.close();
    EXPECT_TRUE(listener.awaitWorkers(0));
}

}  // namespace
