#include <afxwin.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "NyServer/base/detail/WindowsHandles.h"
#include "tests/support/Gate.h"

namespace {

constexpr UINT kRequest = WM_APP + 1;

// Keeps what it receives and does what the test says.
class TestWindow : public CWnd {
  public:
    ~TestWindow() override {
        if (wasDeleted != nullptr) *wasDeleted = true;
    }

    BOOL create(LPCWSTR className = AfxRegisterWndClass(0)) {
        return CreateEx(0, className, L"test", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr);
    }
    BOOL createVisible() {
        return CreateEx(0, AfxRegisterWndClass(0), L"test", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                        200, 100, nullptr, nullptr);
    }
    LRESULT ask(WPARAM wParam, LPARAM lParam) {
        return ::SendMessageW(m_hWnd, kRequest, wParam, lParam);
    }
    template <class Action>
    void at(UINT message, Action action) {
        script = [=](UINT received) {
            if (received == message) action();
        };
    }
    auto countOf(UINT message) const {
        return std::count(messages.begin(), messages.end(), message);
    }

    std::vector<UINT> messages;
    bool alwaysHadItsHandle = true;
    std::function<void(UINT)> script;
    int ends = 0;
    bool* wasDeleted = nullptr;  // one that is told so deletes itself in the end
    UINT refused = 0;            // gets the answer 0

  protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        messages.push_back(message);
        alwaysHadItsHandle = alwaysHadItsHandle && m_hWnd != nullptr;
        if (script) script(message);
        if (message == kRequest) return static_cast<LRESULT>(wParam) + lParam;
        if (message == refused && refused != 0) return 0;
        return CWnd::WindowProc(message, wParam, lParam);
    }
    void PostNcDestroy() override {
        ++ends;
        EXPECT_EQ(m_hWnd, nullptr);
        if (wasDeleted != nullptr) delete this;
    }
};

void throwNumber() {
    throw 7;
}

class Window : public testing::Test {
  protected:
    ~Window() override {
        if (m_others != nullptr) ::DestroyWindow(m_others);
    }
    void makeAnothers() {
        m_others = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                     nullptr, nullptr);
    }
    void expectNotMade() {
        EXPECT_FALSE(m_window.create());
        EXPECT_EQ(m_window.GetSafeHwnd(), nullptr);
    }
    void expectMade() {
        ASSERT_TRUE(m_window.create());
        EXPECT_EQ(m_window.ask(40, 2), 42);
    }

    TestWindow m_window;
    HWND m_others = nullptr;  // a window of somebody else
};

TEST_F(Window, ReceivesMessagesWithoutBeingSeen) {
    expectMade();
    EXPECT_EQ(m_window.GetSafeHwnd(), m_window.m_hWnd);
    EXPECT_TRUE(::IsWindow(m_window.m_hWnd));
}

TEST_F(Window, HasItsHandleFromTheFirstMessageToTheLast) {
    ASSERT_TRUE(m_window.create());
    EXPECT_EQ(m_window.countOf(WM_NCCREATE), 1);
    EXPECT_EQ(m_window.countOf(WM_CREATE), 1);
    EXPECT_TRUE(m_window.DestroyWindow());
    EXPECT_EQ(m_window.messages.back(), static_cast<UINT>(WM_NCDESTROY));
    ASSERT_TRUE(m_window.createVisible());
    EXPECT_GT(m_window.countOf(WM_GETMINMAXINFO), 0);
    EXPECT_TRUE(m_window.DestroyWindow());
    EXPECT_TRUE(m_window.alwaysHadItsHandle);
}

TEST_F(Window, IsDestroyedOnceAndMayBeCreatedAgain) {
    EXPECT_FALSE(m_window.DestroyWindow());
    ASSERT_TRUE(m_window.create());
    EXPECT_TRUE(m_window.DestroyWindow());
    EXPECT_FALSE(m_window.DestroyWindow());
    EXPECT_EQ(m_window.ends, 1);
    expectMade();
}

TEST_F(Window, EndsWhenOtherCodeDestroysIt) {
    ASSERT_TRUE(m_window.create());
    ::DestroyWindow(m_window.m_hWnd);
    EXPECT_EQ(m_window.m_hWnd, nullptr);
    EXPECT_EQ(m_window.ends, 1);
}

TEST_F(Window, MayDeleteItselfAtItsEndEvenDuringItsCreation) {
    for (const bool isMade : {true, false}) {
        bool wasDeleted = false;
        auto* window = new TestWindow;
        window->wasDeleted = &wasDeleted;
        if (!isMade) window->at(WM_CREATE, throwNumber);
        ASSERT_EQ(window->create() != FALSE, isMade);
        if (isMade) window->DestroyWindow();
        EXPECT_TRUE(wasDeleted);
    }
}

TEST_F(Window, MayRefuseItsCreation) {
    for (const UINT message : {WM_NCCREATE, WM_CREATE}) {
        m_window.refused = message == WM_NCCREATE ? message : 0;
        m_window.at(message, throwNumber);
        expectNotMade();
    }
    m_window.script = {};
    m_window.refused = WM_NCCREATE;
    expectNotMade();
    m_window.refused = 0;
    expectMade();
}

TEST_F(Window, OfAnUnknownClassIsNotCreated) {
    EXPECT_FALSE(m_window.create(L"no such class"));
    EXPECT_EQ(m_window.m_hWnd, nullptr);
    // Nor does it take the thread's next window for its own.
    makeAnothers();
    EXPECT_EQ(m_window.m_hWnd, nullptr);
    EXPECT_TRUE(m_window.messages.empty());
}

// Refuses every window of this thread.
class WindowVeto {
    static LRESULT CALLBACK refuse(int code, WPARAM, LPARAM) { return code == HCBT_CREATEWND; }

    NySe::UniqueHandle<HHOOK, ::UnhookWindowsHookEx> m_hook{
        ::SetWindowsHookExW(WH_CBT, &refuse, nullptr, ::GetCurrentThreadId())};
};

TEST_F(Window, RefusedByAHookIsNotCreated) {
    {
        const WindowVeto veto;
        expectNotMade();
    }
    expectMade();
}

TEST_F(Window, ReturnsItsHandleToOtherThreadsWhileItIsCreatedAndDestroyed) {
    std::atomic<bool> isDone = false;
    std::atomic<bool> wasSeen = false;
    std::thread reader([&] {
        while (!isDone) wasSeen = wasSeen || m_window.GetSafeHwnd() != nullptr;
    });
    EXPECT_TRUE(eventually([&] {
        m_window.create();
        ::Sleep(1);
        m_window.DestroyWindow();
        return wasSeen.load();
    }));
    isDone = true;
    reader.join();
}

TEST_F(Window, LetsNoExceptionThrough) {
    const std::vector<void (*)()> throwers = {[] { throw std::runtime_error("no"); }, throwNumber,
                                              [] { AfxThrowMemoryException(); }};
    for (const auto thrower : throwers) {
        TestWindow window;
        ASSERT_TRUE(window.create());
        window.script = [=](UINT) { thrower(); };
        EXPECT_EQ(window.ask(40, 2), 0);
        EXPECT_TRUE(window.DestroyWindow());
        EXPECT_EQ(window.m_hWnd, nullptr);
        EXPECT_EQ(window.ends, 1);
    }
}

TEST_F(Window, FindsItsInvalidAreaWhenItPaints) {
    ASSERT_TRUE(m_window.createVisible());
    BOOL isInvalid = FALSE;
    m_window.at(WM_PAINT, [&] { isInvalid = ::GetUpdateRect(m_window.m_hWnd, nullptr, FALSE); });
    ::InvalidateRect(m_window.m_hWnd, nullptr, FALSE);
    ::SendMessageW(m_window.m_hWnd, WM_PAINT, 0, 0);
    EXPECT_TRUE(isInvalid);
    m_window.DestroyWindow();
}

TEST_F(Window, ThatFailsToPaintIsValidated) {
    ASSERT_TRUE(m_window.createVisible());
    m_window.at(WM_PAINT, throwNumber);
    ::InvalidateRect(m_window.m_hWnd, nullptr, FALSE);
    ::SendMessageW(m_window.m_hWnd, WM_PAINT, 0, 0);
    EXPECT_FALSE(::GetUpdateRect(m_window.m_hWnd, nullptr, FALSE));
    m_window.DestroyWindow();
}

TEST_F(Window, MayBeAControl) {
    ASSERT_TRUE(m_window.create(L"EDIT"));
    ::SetWindowTextW(m_window.m_hWnd, L"second");
    EXPECT_EQ(m_window.countOf(WM_SETTEXT), 1);
    ::SendMessageW(m_window.m_hWnd, EM_SETSEL, 0, -1);
    ::SendMessageW(m_window.m_hWnd, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"third"));
    wchar_t text[10] = L"";
    ::GetWindowTextW(m_window.m_hWnd, text, 10);
    EXPECT_STREQ(text, L"third");
}

TEST_F(Window, MayCreateAnotherDuringItsCreation) {
    TestWindow inner;
    m_window.at(WM_CREATE, [&] { inner.create(); });
    ASSERT_TRUE(m_window.create());
    EXPECT_NE(inner.m_hWnd, nullptr);
    EXPECT_NE(inner.m_hWnd, m_window.m_hWnd);
    EXPECT_EQ(inner.countOf(WM_CREATE), 1);
    EXPECT_EQ(m_window.countOf(WM_CREATE), 1);
}

TEST_F(Window, IsDestroyedWithItsObjectUnlessItWasCreatedElsewhere) {
    makeAnothers();
    HWND own = nullptr;
    {
        TestWindow window;
        ASSERT_TRUE(window.create());
        own = window.m_hWnd;
        CWnd attached;
        EXPECT_TRUE(attached.Attach(m_others));
        EXPECT_EQ(attached.m_hWnd, m_others);
    }
    EXPECT_FALSE(::IsWindow(own));
    EXPECT_TRUE(::IsWindow(m_others));
}

TEST_F(Window, ThatIsDetachedHasTheProcedureOfItsClass) {
    ASSERT_TRUE(m_window.create(L"EDIT"));
    m_others = m_window.Detach();
    EXPECT_EQ(m_window.m_hWnd, nullptr);
    m_window.messages.clear();
    ::SetWindowTextW(m_others, L"text");
    EXPECT_TRUE(m_window.messages.empty());
    EXPECT_EQ(::GetWindowTextLengthW(m_others), 4);
    EXPECT_EQ(m_window.ends, 0);
}

TEST(WindowClass, IsRegisteredOnceForTheSameTraits) {
    LPCWSTR plain = AfxRegisterWndClass(0);
    EXPECT_EQ(AfxRegisterWndClass(0), plain);
    EXPECT_STRNE(AfxRegisterWndClass(CS_DBLCLKS), plain);
    const auto brush = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    EXPECT_STRNE(AfxRegisterWndClass(0, nullptr, brush), plain);
}

TEST(WindowClass, HasItsTraits) {
    const auto brush = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    HCURSOR cursor = ::LoadCursorW(nullptr, IDC_ARROW);
    HICON icon = ::LoadIconW(nullptr, IDI_APPLICATION);
    WNDCLASSW traits = {};
    ASSERT_TRUE(::GetClassInfoW(AfxGetInstanceHandle(),
                                AfxRegisterWndClass(CS_OWNDC, cursor, brush, icon), &traits));
    EXPECT_EQ(traits.style, static_cast<UINT>(CS_OWNDC));
    EXPECT_EQ(traits.hCursor, cursor);
    EXPECT_EQ(traits.hbrBackground, brush);
    EXPECT_EQ(traits.hIcon, icon);
}

}  // namespace
