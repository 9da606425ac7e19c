#pragma once

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/base/WindowsPrelude.h"

// While one lives, a thread calls Watcher::onMessage(MSG&, bool isRemoved) with each message that
// it takes or looks at, before it has it.
template <class Watcher>
class MessageHook {
  public:
    explicit MessageHook(DWORD thread = ::GetCurrentThreadId())
        : m_hook(::SetWindowsHookExW(WH_GETMESSAGE, &onHook, nullptr, thread)) {}
    explicit MessageHook(HWND window) : MessageHook(::GetWindowThreadProcessId(window, nullptr)) {}

  private:
    static LRESULT CALLBACK onHook(int code, WPARAM wParam, LPARAM lParam) {
        Watcher::onMessage(*reinterpret_cast<MSG*>(lParam), wParam == PM_REMOVE);
        return ::CallNextHookEx(nullptr, code, wParam, lParam);
    }

    const NySe::UniqueHandle<HHOOK, ::UnhookWindowsHookEx> m_hook;
};
