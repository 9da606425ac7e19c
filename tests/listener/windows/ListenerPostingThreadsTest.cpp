// Posting while other threads post, and while windows go.
#include "tests/listener/ListenerTest.h"
#include "tests/listener/windows/HostWindow.h"
#include "tests/support/Guarded.h"

namespace {

constexpr unsigned int kFromThreads = WM_APP + 7;

class ListenerPostingThreads : public testing::Test {
  protected:
    ProbeListener m_listener;
    HostWindow m_window;
};

// Posts without a pause until it goes.
class StreamingSender {
  public:
    explicit StreamingSender(NyServerApp& listener)
        : m_listener(listener), m_thread([this](std::stop_token ending) { run(ending); }) {}

    // Once so many more posts have begun and ended.
    bool awaitPosts(int count) {
        const int wanted = m_posts + count + 1;
        return eventually([&] { return m_posts >= wanted; }, kGenerously);
    }

  private:
    void run(const std::stop_token& ending) {
        for (; !ending.stop_requested(); ++m_posts) {
            CMemFile file;
            file.Write("stream", 6);
            m_listener.postMessageToMainFrame(kFromThreads, file);
        }
    }

    NyServerApp& m_listener;
    std::atomic<int> m_posts = 0;
    std::jthread m_thread;
};

TEST_F(ListenerPostingThreads, CountsOnlyPostedMessagesWhenTheWindowIsDestroyedMeanwhile) {
    m_listener.setAppWnd(m_window.wnd());
    StreamingSender sender(m_listener);
    ASSERT_TRUE(eventually([&] { return m_window.count() >= 50; }, kGenerously));
    m_window.destroyWindow();
    ASSERT_TRUE(sender.awaitPosts(1));
    const int count = m_listener.getPostMsgCount();
    EXPECT_GE(count, 50);
    ASSERT_TRUE(sender.awaitPosts(1000));
    EXPECT_EQ(m_listener.getPostMsgCount(), count);
    m_listener.setAppWnd(nullptr);
}

// A window of the test's thread, which loses its handle when it is destroyed.
class OwnWindow : public CWnd {
  public:
    OwnWindow() { CreateEx(0, _T("STATIC"), _T(""), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr); }
};

// Its length is asked for between the look at the window and the post.
class FileThatEndsAWindow : public CMemFile {
  public:
    explicit FileThatEndsAWindow(CWnd& window) : m_window(window) {}
    ULONGLONG GetLength() const override {
        m_window.DestroyWindow();
        return CMemFile::GetLength();
    }

  private:
    CWnd& m_window;
};

TEST_F(ListenerPostingThreads, NothingIsPostedToAWindowThatIsDestroyedMeanwhile) {
    OwnWindow window;
    m_listener.setAppWnd(&window);
    FileThatEndsAWindow file(window);
    file.Write("content", 7);
    ASSERT_TRUE(::IsWindow(window.GetSafeHwnd()));
    m_listener.postMessageToMainFrame(kFromThreads, file);
    ASSERT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    MSG message;
    EXPECT_FALSE(::PeekMessageW(&message, nullptr, kFromThreads, kFromThreads, PM_REMOVE));
    m_listener.setAppWnd(nullptr);
}

TEST_F(ListenerPostingThreads, DoesNotUseAWindowObjectOnceAnotherIsSet) {
    const StreamingSender sender(m_listener);
    // On a crowded machine the sender may not get its turn for long.
    const auto deadline = std::chrono::steady_clock::now() + kGenerously;
    const auto isEnough = [&](int rounds) {
        return rounds >= 3000 &&
               (m_window.count() > 0 || std::chrono::steady_clock::now() > deadline);
    };
    for (int i = 0; !isEnough(i); ++i) {
        Guarded<CWnd> window;
        window->Attach(m_window.wnd()->GetSafeHwnd());
        m_listener.setAppWnd(&*window);
        if (i % 16 == 0) port::sleep(0);
        m_listener.setAppWnd(nullptr);
        window->Detach();
    }
    m_window.settle();
    EXPECT_GT(m_window.count(), 0u);
}

}  // namespace
