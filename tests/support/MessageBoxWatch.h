// Answers the message boxes of the thread that makes it, and keeps what they showed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/base/WindowsPrelude.h"

// One at a time per process. Boxes that show up while it lives get `answer` (IDOK, ...) as soon as
// they are shown.
class MessageBoxWatch {
  public:
    struct Box {
        std::wstring title, text;
        LONG style;
        HWND owner;
        HICON icon;  // null without one
    };

    explicit MessageBoxWatch(int answer) : m_answer(answer) {
        current = this;
        m_hook.reset(::SetWindowsHookExW(WH_CALLWNDPROCRET, &MessageBoxWatch::onSent, nullptr,
                                         ::GetCurrentThreadId()));
    }
    ~MessageBoxWatch() { current = nullptr; }
    MessageBoxWatch(const MessageBoxWatch&) = delete;
    MessageBoxWatch& operator=(const MessageBoxWatch&) = delete;

    const std::vector<Box>& boxes() const { return m_boxes; }

    // Called while a box is shown, before it is answered.
    std::function<void()> atBox = [] {};

  private:
    static std::wstring textOf(HWND window) {
        wchar_t text[4096] = L"";
        ::GetWindowTextW(window, text, 4096);
        return text;
    }

    static bool isMessageBox(HWND window) {
        wchar_t name[16] = L"";
        ::GetClassNameW(window, name, 16);
        return std::wstring(name) == L"#32770";
    }

    static LRESULT CALLBACK onSent(int code, WPARAM wParam, LPARAM lParam) {
        const auto* sent = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
        if (code == HC_ACTION && current != nullptr && sent->message == WM_INITDIALOG &&
            isMessageBox(sent->hwnd)) {
            current->answerBox(sent->hwnd);
        }
        return ::CallNextHookEx(nullptr, code, wParam, lParam);
    }

    void answerBox(HWND box) {
        const HWND text = ::GetDlgItem(box, 0xFFFF);
        const HWND icon = ::GetDlgItem(box, 0x0440);
        m_boxes.push_back({textOf(box), textOf(text), ::GetWindowLongW(box, GWL_STYLE),
                           ::GetWindow(box, GW_OWNER),
                           reinterpret_cast<HICON>(::SendMessageW(icon, STM_GETICON, 0, 0))});
        atBox();
        ::PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(m_answer), 0);
    }

    static inline MessageBoxWatch* current = nullptr;

    int m_answer;
    NySe::UniqueHandle<HHOOK, ::UnhookWindowsHookEx> m_hook;
    std::vector<Box> m_boxes;
};
