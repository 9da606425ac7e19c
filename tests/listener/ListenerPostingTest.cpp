#include <gtest/gtest.h>

#include <cstring>

#include "NyServer/listener/NyServerNotification.h"
#include "tests/listener/ListenerTest.h"
#include "tests/support/Guarded.h"
#include "tests/support/WorkingSet.h"

namespace {

constexpr unsigned int kMessage = WM_APP + 7;

class ListenerPosting : public testing::Test {
  protected:
    // A file that stands at its end.
    void fill(const std::string& content) {
        m_file.Write(content.data(), static_cast<UINT>(content.size()));
    }
    void post(unsigned int message = kMessage) {
        m_listener.postMessageToMainFrame(message, m_file);
    }
    void post(const std::string& content) {
        fill(content);
        post();
    }
    std::vector<PostedMessage> posted() {
        m_window.settle();
        return m_window.messages();
    }
    void expectUntouched(size_t length, size_t position) {
        EXPECT_EQ(m_file.GetLength(), length);
        EXPECT_EQ(m_file.GetPosition(), position);
        EXPECT_EQ(m_listener.getPostMsgCount(), 0);
        EXPECT_TRUE(posted().empty());
    }

    ProbeListener m_listener;
    CMemFile m_file;
    MainWindow m_window;
};

class ListenerPostingToAWindow : public ListenerPosting {
  protected:
    void SetUp() override { m_listener.setAppWnd(m_window.wnd()); }
    void TearDown() override { m_listener.setAppWnd(nullptr); }
};

TEST_F(ListenerPosting, NothingHappensWithoutAWindow) {
    post("content");
    expectUntouched(7, 7);
}

TEST_F(ListenerPosting, NothingHappensWithAnObjectWithoutAWindow) {
    CWnd none;
    m_listener.setAppWnd(&none);
    post("content");
    expectUntouched(7, 7);
}

TEST_F(ListenerPosting, NothingHappensOnceTheWindowIsDestroyed) {
    MainWindow gone;
    gone.destroyWindow();
    ASSERT_NE(gone.wnd()->GetSafeHwnd(), nullptr);
    m_listener.setAppWnd(gone.wnd());
    post("content");
    expectUntouched(7, 7);
}

TEST_F(ListenerPostingToAWindow, MovesTheWholeFileIntoTheBlock) {
    post(std::string("a\0c", 3));
    const auto all = posted();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].message, kMessage);
    EXPECT_EQ(all[0].size, 3u);
    EXPECT_EQ(all[0].bytes, std::string("a\0c", 3));
    EXPECT_EQ(m_file.GetLength(), 0u);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerPostingToAWindow, PostsTheAddressOfAnUnlockedMoveableBlock) {
    post("content");
    EXPECT_TRUE(posted().at(0).isMoveable);
    EXPECT_EQ(posted().at(0).lockCount, 0u);
}

TEST_F(ListenerPostingToAWindow, PostsAnEmptyFileWithoutAnAddress) {
    post("");
    EXPECT_EQ(posted().at(0).size, 0u);
    EXPECT_EQ(posted().at(0).address, 0);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerPostingToAWindow, CountsWhatTheSystemDoesNotTake) {
    fill("content");
    post(WM_GETTEXT);  // may only be sent
    EXPECT_TRUE(posted().empty());
    EXPECT_EQ(m_file.GetLength(), 0u);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

// The system has 65535 handles of moveable blocks for a process.
std::vector<UniqueGlobalBlock> takeAllBlocks() {
    std::vector<UniqueGlobalBlock> all;
    for (UniqueGlobalBlock block; (block.reset(::GlobalAlloc(GMEM_MOVEABLE, 1)), block);)
        all.push_back(std::move(block));
    return all;
}

TEST_F(ListenerPostingToAWindow, DropsTheNotificationWithoutMemoryForIt) {
    auto all = takeAllBlocks();
    ASSERT_GT(all.size(), 1000u);
    post("content");
    all.clear();
    expectUntouched(7, 0);
    post();
    EXPECT_EQ(posted().at(0).bytes, "content");
}

TEST_F(ListenerPostingToAWindow, KeepsNoEmptyBlock) {
    auto all = takeAllBlocks();
    all.resize(all.size() - 3);
    for (int i = 0; i < 10; ++i) post("");
    EXPECT_EQ(posted().size(), 10u);
}

TEST_F(ListenerPostingToAWindow, KeepsNothingOfWhatItPosts) {
    const std::string content(1024 * 1024, 'm');
    const auto round = [&] {
        for (int i = 0; i < 50; ++i) {
            post(content);
            m_window.forget();
        }
    };
    round();
    const SIZE_T before = workingSet();
    round();
    EXPECT_LT(workingSet(), before + 20 * content.size());
}

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
            m_listener.postMessageToMainFrame(kMessage, file);
        }
    }

    NyServerApp& m_listener;
    std::atomic<bool> m_isEnding = false;
    std::atomic<int> m_posts = 0;
    std::thread m_thread;
};

TEST_F(ListenerPostingToAWindow, CountsOnlyWhatWasPostedWhenTheWindowGoesInMidStream) {
    StreamingSender sender(m_listener);
    m_window.awaitMessages(50);
    m_window.destroyWindow();
    ASSERT_TRUE(sender.awaitPosts(1));
    const int count = m_listener.getPostMsgCount();
    EXPECT_GE(count, 50);
    ASSERT_TRUE(sender.awaitPosts(1000));
    EXPECT_EQ(m_listener.getPostMsgCount(), count);
}

// A window of the test's thread, which loses its handle when it is destroyed.
class OwnWindow : public CWnd {
  public:
    OwnWindow() { CreateEx(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr); }
    // Whether there was a message.
    bool consumeOne(NyServerApp& listener) {
        MSG one;
        if (!::PeekMessageW(&one, m_hWnd, kMessage, kMessage, PM_REMOVE)) return false;
        const NyServerNotification consumed(one.wParam, one.lParam, &listener);
        return true;
    }
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

TEST_F(ListenerPosting, NothingIsPostedToAWindowThatGoesMeanwhile) {
    OwnWindow window;
    m_listener.setAppWnd(&window);
    FileThatEndsAWindow file(window);
    file.Write("content", 7);
    ASSERT_TRUE(::IsWindow(window.GetSafeHwnd()));
    m_listener.postMessageToMainFrame(kMessage, file);
    ASSERT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    MSG message;
    EXPECT_FALSE(::PeekMessageW(&message, nullptr, kMessage, kMessage, PM_REMOVE));
    m_listener.setAppWnd(nullptr);
}

TEST_F(ListenerPosting, CountsNothingForWindowsThatGoInMidStream) {
    StreamingSender senders[] = {StreamingSender(m_listener), StreamingSender(m_listener),
                                 StreamingSender(m_listener)};
    for (int round = 0; round < 50; ++round) {
        OwnWindow window;
        m_listener.setAppWnd(&window);
        EXPECT_TRUE(eventually([&] { return window.consumeOne(m_listener); }, kGenerously));
        {
            const ProbeListener::ThreadListLock nobodyPosts(m_listener);
            while (window.consumeOne(m_listener)) {
            }
            window.DestroyWindow();
        }
        for (auto& sender : senders) ASSERT_TRUE(sender.awaitPosts(1));
        EXPECT_EQ(m_listener.getPostMsgCount(), 0);
        m_listener.setAppWnd(nullptr);
    }
}

TEST_F(ListenerPosting, LeavesAWindowObjectAloneOnceAnotherIsSet) {
    const StreamingSender sender(m_listener);
    // On a crowded machine the sender may not get its turn for long.
    const auto isEnough = [&](int rounds) {
        return rounds >= 3000 && (m_window.count() > 0 || rounds >= 300000);
    };
    for (int i = 0; !isEnough(i); ++i) {
        Guarded<CWnd> window;
        window->Attach(m_window.wnd()->GetSafeHwnd());
        m_listener.setAppWnd(&*window);
        if (i % 16 == 0) ::Sleep(0);
        m_listener.setAppWnd(nullptr);
        window->Detach();
    }
    EXPECT_GT(posted().size(), 0u);
}

// Were a message consumed before it is counted, the count would stay above 0.
TEST(ListenerCount, ComesBackToZeroUnderAnEagerWindow) {
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

TEST(ListenerCount, IsExactUnderManyThreads) {
    ProbeListener listener;
    const auto onFourThreads = [](auto action) {
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int n = 0; n < 20000; ++n) action();
            });
        for (auto& thread : threads) thread.join();
    };
    onFourThreads([&] { listener.increasePostMsgCount(); });
    EXPECT_EQ(listener.getPostMsgCount(), 80000);
    onFourThreads([&] { listener.decreasePostMsgCount(); });
    EXPECT_EQ(listener.getPostMsgCount(), 0);
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
