// Posting while other threads post, and while windows go.

#include <gtest/gtest.h>

#include "tests/listener/ListenerTest.h"
#include "tests/support/Guarded.h"

namespace {

constexpr unsigned int kFromThreads = WM_APP + 7;

class ListenerPostingThreads : public testing::Test {
  protected:
    ProbeListener m_listener;
    MainWindow m_window;
};

// Posts without a pause until it goes.
class StreamingSender {
  public:
    explicit StreamingSender(NyServerApp& listener)
        : m_listener(listener), m_thread([this] { run(); }) {}
    ~StreamingSender() {
        m_isEnding = true;
        m_thread.join();
    }
    StreamingSender(const StreamingSender&) = delete;
    StreamingSender& operator=(const StreamingSender&) = delete;

    // Once so many more posts have begun and ended.
    bool awaitPosts(int count) {
        const int wanted = m_posts + count + 1;
        return eventually([&] { return m_posts >= wanted; }, kGenerously);
    }

  private:
    void run() {
        for (; !m_isEnding; ++m_posts) {
            CMemFile file;
            file.Write("stream", 6);
            m_listener.postMessageToMainFrame(kFromThreads, file);
        }
    }

    NyServerApp& m_listener;
    std::atomic<bool> m_isEnding = false;
    std::atomic<int> m_posts = 0;
    std::thread m_thread;
};

TEST_F(ListenerPostingThreads, CountsOnlyPostedMessagesWhenTheWindowIsDestroyedMeanwhile) {
    m_listener.setAppWnd(m_window.wnd());
    StreamingSender sender(m_listener);
    m_window.awaitMessages(50);
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
        if (i % 16 == 0) ::Sleep(0);
        m_listener.setAppWnd(nullptr);
        window->Detach();
    }
    m_window.settle();
    EXPECT_GT(m_window.count(), 0u);
}

// Were a message consumed before it is counted, the count would stay above 0.
TEST(ListenerCount, ReturnsToZeroWithAFastWindow) {
    ProbeListener listener;
    MainWindow window(&listener);
    listener.setAppWnd(window.wnd());
    constexpr int kEach = 3000;
    std::vector<std::thread> senders;
    for (int i = 0; i < 2; ++i)
        senders.emplace_back([&] {
            for (int n = 0; n < kEach; ++n) {
                CMemFile file;
                file.Write("stream", 6);
                listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
                if (n % 8 == 0) ::Sleep(0);
            }
        });
    for (auto& sender : senders) sender.join();
    EXPECT_EQ(window.awaitMessages(2 * kEach).size(), 2u * kEach);
    EXPECT_TRUE(listener.awaitNoMessages());
}

TEST(ListenerCount, ChangesLikeTheWindowUnderTheLockOfTheWorkers) {
    ProbeListener listener;
    std::atomic<int> done = 0;
    std::vector<std::thread> threads;
    {
        const ProbeListener::ThreadListLock lock(listener);
        threads.emplace_back([&] { listener.increasePostMsgCount(), ++done; });
        threads.emplace_back([&] { listener.decreasePostMsgCount(), ++done; });
        threads.emplace_back([&] { listener.setAppWnd(nullptr), ++done; });
        ::Sleep(100);
        EXPECT_EQ(done, 0);
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(done, 3);
}

}  // namespace
