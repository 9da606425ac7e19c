#include <cstring>

#include "NyServer/listener/NyServerNotification.h"
#include "tests/listener/ListenerTest.h"
#include "tests/listener/windows/HostWindow.h"
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
    std::vector<PostedBlock> posted() {
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
    HostWindow m_window;
};

class ListenerPostingToAWindow : public ListenerPosting {
  protected:
    void SetUp() override { m_listener.setAppWnd(m_window.wnd()); }
    void TearDown() override { m_listener.setAppWnd(nullptr); }
};

TEST_F(ListenerPosting, NothingHappensWithoutAWindow) {
    CWnd none;
    HostWindow gone;
    gone.destroyWindow();
    ASSERT_NE(gone.wnd()->GetSafeHwnd(), nullptr);
    fill("content");
    for (CWnd* window : {static_cast<CWnd*>(nullptr), &none, gone.wnd()}) {
        m_listener.setAppWnd(window);
        post();
        expectUntouched(7, 7);
    }
}

TEST_F(ListenerPostingToAWindow, MovesTheWholeFileIntoAnUnlockedMoveableBlock) {
    post(std::string("a\0c", 3));
    const auto all = posted();
    ASSERT_EQ(all.size(), 1u);
    EXPECT_EQ(all[0].message, kMessage);
    EXPECT_EQ(all[0].size, 3u);
    EXPECT_EQ(all[0].bytes, std::string("a\0c", 3));
    EXPECT_TRUE(all[0].isMoveable);
    EXPECT_EQ(all[0].lockCount, 0u);
    EXPECT_EQ(m_file.GetLength(), 0u);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerPostingToAWindow, CountsDownAsManyEmptyFilesAsItPosted) {
    post("content");
    post("");
    post("");
    { const NyServerNotification forged(100, 16, &m_listener); }
    EXPECT_EQ(m_listener.getPostMsgCount(), 3);
    for (const int left : {2, 1, 1}) {
        { const NyServerNotification empty(0, 0, &m_listener); }
        EXPECT_EQ(m_listener.getPostMsgCount(), left);
    }
}

TEST_F(ListenerPostingToAWindow, ForgetsEmptyFilesWithItsWindow) {
    post("");
    m_listener.setAppWnd(nullptr);
    m_listener.setAppWnd(m_window.wnd());
    post("content");
    { const NyServerNotification forged(0, 0, &m_listener); }
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerPostingToAWindow, CountsMessagesThatTheSystemRefuses) {
    fill("content");
    post(WM_GETTEXT);  // may only be sent
    EXPECT_TRUE(posted().empty());
    EXPECT_EQ(m_file.GetLength(), 0u);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

// The system has 65535 handles of moveable blocks for a process.
std::vector<NySe::UniqueGlobalBlock> takeAllBlocks() {
    std::vector<NySe::UniqueGlobalBlock> all;
    for (NySe::UniqueGlobalBlock block; (block.reset(::GlobalAlloc(GMEM_MOVEABLE, 1)), block);)
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

TEST_F(ListenerPostingToAWindow, PostsEmptyFilesWithoutABlock) {
    auto all = takeAllBlocks();
    all.resize(all.size() - 3);
    for (int i = 0; i < 10; ++i) post("");
    EXPECT_EQ(m_listener.getPostMsgCount(), 10);
    EXPECT_EQ(posted().size(), 10u);
    EXPECT_EQ(posted().at(0).size, 0u);
    EXPECT_EQ(posted().at(0).address, 0);
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

}  // namespace
