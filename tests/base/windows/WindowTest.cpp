#include <afxwin.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/support/Gate.h"

namespace {

constexpr UINT kRequest = WM_APP + 1;

// Keeps what it receives and does what the test says.
class TestWindow : public CWnd {
  public:
    ~TestWindow() override {
        if (wasDeleted != nullptr) *wasDeleted = true;
    }

    BOOL createMessageOnly() {
        return CreateEx(0, AfxRegisterWndClass(0), L"test", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr);
    }
    BOOL createVisible() {
        return CreateEx(0, AfxRegisterWndClass(0), L"test", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                        200, 100, nullptr, nullptr);
    }
    bool received(UINT message) const { return countOf(message) > 0; }
    int countOf(UINT message) const {
        int count = 0;
        for (const UINT one : messages) count += one == message ? 1 : 0;
        return count;
    }

    std::vector<UINT> messages;
    bool alwaysHadItsHandle = true;
    std::function<void(UINT)> script;
    int ends = 0;
    bool deletesItself = false;
    bool* wasDeleted = nullptr;
    UINT refused = 0;  // gets the answer 0

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
        if (deletesItself) delete this;
    }
};

TEST(Window, ReceivesMessagesWithoutBeingSeen) {
    TestWindow window;
    ASSERT_TRUE(window.createMessageOnly());
    EXPECT_EQ(window.GetSafeHwnd(), window.m_hWnd);
    EXPECT_TRUE(::IsWindow(window.m_hWnd));
    EXPECT_EQ(::SendMessageW(window.m_hWnd, kRequest, 40, 2), 42);
}

TEST(Window, HasItsHandleFromTheFirstMessageToTheLast) {
    TestWindow window;
    ASSERT_TRUE(window.createMessageOnly());
    EXPECT_TRUE(window.received(WM_NCCREATE));
    EXPECT_TRUE(window.received(WM_CREATE));
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_EQ(window.messages.back(), static_cast<UINT>(WM_NCDESTROY));
    EXPECT_TRUE(window.alwaysHadItsHandle);
    EXPECT_EQ(window.m_hWnd, nullptr);
}

TEST(Window, OnScreenHasItsHandleInTheFirstMessageToo) {
    TestWindow window;
    ASSERT_TRUE(window.createVisible());
    EXPECT_TRUE(window.received(WM_GETMINMAXINFO));
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_TRUE(window.alwaysHadItsHandle);
}

TEST(Window, EndsOnceAndMayBeMadeAgain) {
    TestWindow window;
    EXPECT_FALSE(window.DestroyWindow());
    ASSERT_TRUE(window.createMessageOnly());
    EXPECT_TRUE(window.DestroyWindow());
    EXPECT_FALSE(window.DestroyWindow());
    EXPECT_EQ(window.ends, 1);
    ASSERT_TRUE(window.createMessageOnly());
    EXPECT_EQ(::SendMessageW(window.m_hWnd, kRequest, 1, 1), 2);
}

TEST(Window, EndsWhenSomebodyElseDestroysIt) {
    TestWindow window;
    ASSERT_TRUE(window.createMessageOnly());
    ::DestroyWindow(window.m_hWnd);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_EQ(window.ends, 1);
}

TEST(Window, MayDeleteItselfInTheEnd) {
    bool wasDeleted = false;
    auto* window = new TestWindow;
    window->deletesItself = true;
    window->wasDeleted = &wasDeleted;
    ASSERT_TRUE(window->createMessageOnly());
    window->DestroyWindow();
    EXPECT_TRUE(wasDeleted);
}

TEST(Window, MayRefuseToBeMade) {
    for (const UINT message : {WM_NCCREATE, WM_CREATE}) {
        TestWindow window;
        window.refused = message == WM_NCCREATE ? message : 0;
        window.script = [message](UINT received) {
            if (received == message) throw std::runtime_error("no");
        };
        EXPECT_FALSE(window.createMessageOnly());
        EXPECT_EQ(window.m_hWnd, nullptr) << message;
    }
    TestWindow window;
    window.refused = WM_NCCREATE;
    EXPECT_FALSE(window.createMessageOnly());
    EXPECT_EQ(window.m_hWnd, nullptr);
    window.refused = 0;
    EXPECT_TRUE(window.createMessageOnly());
}

TEST(Window, OfAnUnknownClassIsNotMade) {
    TestWindow window;
    EXPECT_FALSE(window.CreateEx(0, L"no such class", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr));
    EXPECT_EQ(window.m_hWnd, nullptr);
    // Nor does it take the thread's next window for its own.
    const HWND other = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                         nullptr, nullptr);
    EXPECT_EQ(window.m_hWnd, nullptr);
    EXPECT_TRUE(window.messages.empty());
    ::DestroyWindow(other);
}

// Refuses every window of this thread.
class WindowVeto {
  public:
    WindowVeto() { m_hook = ::SetWindowsHookExW(WH_CBT, &refuse, nullptr, ::GetCurrentThreadId()); }
    ~WindowVeto() { ::UnhookWindowsHookEx(m_hook); }
    WindowVeto(const WindowVeto&) = delete;
    WindowVeto& operator=(const WindowVeto&) = delete;

  private:
    static LRESULT CALLBACK refuse(int code, WPARAM, LPARAM) { return code == HCBT_CREATEWND; }

    HHOOK m_hook;
};

TEST(Window, RefusedByAHookIsNotMade) {
    TestWindow window;
    {
        const WindowVeto veto;
        EXPECT_FALSE(window.createMessageOnly());
        EXPECT_EQ(window.GetSafeHwnd(), nullptr);
    }
    EXPECT_TRUE(window.createMessageOnly());
    EXPECT_EQ(::SendMessageW(window.m_hWnd, kRequest, 40, 2), 42);
}

TEST(Window, MayDeleteItselfWhenItRefusesToBeMade) {
    bool wasDeleted = false;
    auto* window = new TestWindow;
    window->deletesItself = true;
    window->wasDeleted = &wasDeleted;
    window->script = [](UINT message) {
        if (message == WM_CREATE) throw std::runtime_error("no");
    };
    EXPECT_FALSE(window->createMessageOnly());
    EXPECT_TRUE(wasDeleted);
}

TEST(Window, TellsOtherThreadsItsHandleWhileItComesAndGoes) {
    TestWindow window;
    std::atomic<bool> isDone = false;
    std::atomic<bool> wasSeen = false;
    std::thread reader([&] {
        while (!isDone) wasSeen = wasSeen || window.GetSafeHwnd() != nullptr;
    });
    EXPECT_TRUE(eventually([&] {
        window.createMessageOnly();
        ::Sleep(1);
        window.DestroyWindow();
        return wasSeen.load();
    }));
    isDone = true;
    reader.join();
}

TEST(Window, LetsNoExceptionThrough) {
    const std::vector<std::function<void()>> throwers = {
        [] { throw std::runtime_error("no"); }, [] { throw 7; }, [] { AfxThrowMemoryException(); }};
    for (const auto& thrower : throwers) {
        TestWindow window;
        ASSERT_TRUE(window.createMessageOnly());
        window.script = [&](UINT) { thrower(); };
        EXPECT_EQ(::SendMessageW(window.m_hWnd, kRequest, 40, 2), 0);
        EXPECT_TRUE(window.DestroyWindow());
        EXPECT_EQ(window.m_hWnd, nullptr);
        EXPECT_EQ(window.ends, 1);
    }
}

TEST(Window, ThatCannotPaintIsNotAskedAgain) {
    TestWindow window;
    ASSERT_TRUE(window.createVisible());
    window.script = [](UINT message) {
        if (message == WM_PAINT) throw 7;
    };
    ::InvalidateRect(window.m_hWnd, nullptr, FALSE);
    ::SendMessageW(window.m_hWnd, WM_PAINT, 0, 0);
    EXPECT_FALSE(::GetUpdateRect(window.m_hWnd, nullptr, FALSE));
    window.DestroyWindow();
}

TEST(Window, MayBeAControl) {
    TestWindow window;
    ASSERT_TRUE(window.CreateEx(0, L"EDIT", L"first", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr));
    ::SetWindowTextW(window.m_hWnd, L"second");
    EXPECT_TRUE(window.received(WM_SETTEXT));
    ::SendMessageW(window.m_hWnd, EM_SETSEL, 0, -1);
    ::SendMessageW(window.m_hWnd, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"third"));
    wchar_t text[10] = L"";
    ::GetWindowTextW(window.m_hWnd, text, 10);
    EXPECT_STREQ(text, L"third");
}

TEST(Window, MayMakeAnotherWhileItIsMade) {
    TestWindow window;
    TestWindow inner;
    window.script = [&](UINT message) {
        if (message == WM_CREATE) inner.createMessageOnly();
    };
    ASSERT_TRUE(window.createMessageOnly());
    EXPECT_NE(inner.m_hWnd, nullptr);
    EXPECT_NE(inner.m_hWnd, window.m_hWnd);
    EXPECT_EQ(inner.countOf(WM_CREATE), 1);
    EXPECT_EQ(window.countOf(WM_CREATE), 1);
}

TEST(Window, GoesWithItsObject) {
    HWND handle = nullptr;
    {
        TestWindow window;
        ASSERT_TRUE(window.createMessageOnly());
        handle = window.m_hWnd;
    }
    EXPECT_FALSE(::IsWindow(handle));
}

TEST(Window, OfSomebodyElseStays) {
    const HWND handle = ::CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                          nullptr, nullptr);
    {
        CWnd window;
        EXPECT_TRUE(window.Attach(handle));
        EXPECT_EQ(window.m_hWnd, handle);
    }
    EXPECT_TRUE(::IsWindow(handle));
    ::DestroyWindow(handle);
}

TEST(Window, LetGoOfGoesOnAsItsClassHasMadeIt) {
    TestWindow window;
    ASSERT_TRUE(window.CreateEx(0, L"EDIT", L"", 0, 0, 0, 10, 10, HWND_MESSAGE, nullptr));
    const HWND handle = window.Detach();
    EXPECT_EQ(window.m_hWnd, nullptr);
    window.messages.clear();
    ::SetWindowTextW(handle, L"text");
    EXPECT_TRUE(window.messages.empty());
    EXPECT_EQ(::GetWindowTextLengthW(handle), 4);
    ::DestroyWindow(handle);
    EXPECT_EQ(window.ends, 0);
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
