// What a listener does for its window and its window's thread.
#include <optional>

#include "tests/listener/ListenerTest.h"
#include "tests/listener/windows/HostWindow.h"
#include "tests/listener/windows/LimitSetting.h"

namespace {

TEST(ListenerWindow, IsWhatTheHostSets) {
    NyServerApp listener;
    CWnd window;
    listener.setAppWnd(&window);
    EXPECT_EQ(listener.getAppWnd(), &window);
}

TEST(ListenerWindow, HasWorkersAtNormalPriority) {
    ProbeListener listener;
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL);
    CUT_WSThread* const worker = listener.CreateInstance();
    EXPECT_EQ(::GetThreadPriority(::GetCurrentThread()), THREAD_PRIORITY_NORMAL);
    ::SetThreadPriority(::GetCurrentThread(), THREAD_PRIORITY_NORMAL);
    listener.ReleaseInstance(worker);
}

// The windows take their messages and report nothing; the test consumes them.
class ListenerWindows : public testing::Test {
  protected:
    void SetUp() override {
        m_listener.setAppWnd(m_window.wnd());
        ASSERT_TRUE(m_listener.start());
        m_peer.emplace(m_listener.connection());
        ASSERT_TRUE(m_listener.awaitWorkers(1));
    }
    void TearDown() override { m_listener.setAppWnd(nullptr); }

    void post(int times = 1) {
        for (int i = 0; i < times; ++i) m_listener.post("x");
    }
    void consume(int times = 1) {
        for (int i = 0; i < times; ++i) m_listener.decreasePostMsgCount();
    }

    peers::WinsockSession m_winsock;
    LimitSetting m_setting{10};
    ProbeListener m_listener;
    HostWindow m_window;
    std::optional<peers::Connection> m_peer;
};

TEST_F(ListenerWindows, PauseTheWorkersWithEachMessageWhenTheLimitIsNone) {
    m_setting.set(1);
    for (int i = 0; i < 2; ++i) {
        post();
        EXPECT_TRUE(m_listener.isPaused());
        consume();
        EXPECT_FALSE(m_listener.isPaused());
    }
}

// The same object may have another window by now: the first may have been destroyed and created
// again, and the messages with it.
TEST_F(ListenerWindows, AreNoLongerCountedForOnceReplaced) {
    HostWindow next;
    for (HostWindow* window : {&m_window, &next}) {
        post(12);
        ASSERT_TRUE(m_listener.isPaused());
        m_listener.setAppWnd(window->wnd());
        EXPECT_EQ(m_listener.getPostMsgCount(), 0);
        EXPECT_FALSE(m_listener.isPaused());
    }
    m_peer->send(frame(50, "for the next"));
    EXPECT_TRUE(eventually([&] { return next.count() == 1; }, kGenerously));
    EXPECT_EQ(next.messages().at(0).bytes, frame(50, "for the next"));
    m_listener.setAppWnd(nullptr);
}

TEST_F(ListenerWindows, CountNoLowerThanZeroForWhatAReplacedOneConsumes) {
    post(3);
    m_listener.setAppWnd(nullptr);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    consume(3);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    m_listener.setAppWnd(m_window.wnd());
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

}  // namespace
