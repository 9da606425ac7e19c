// WindowQueue: calls that other threads hand to the window's thread.
#pragma once

#include <deque>
#include <functional>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Each call comes to the window as one posted message kMessage, for which the window calls runNext;
// so calls keep their order also among the other messages posted to the window.
class WindowQueue {
  public:
    using Call = std::function<void()>;
    static constexpr UINT kMessage = WM_APP;

    // The window from here on. REQUIRES: called before any post.
    void setWindow(HWND window) { m_window = window; }

    // May be called by any thread. A call that finds the window gone is never run.
    void post(Call call);

    // Runs the oldest call. For the window's thread.
    void runNext();

  private:
    HWND m_window = nullptr;
    NySe::Mutex m_mutex;
    std::deque<Call> m_calls NY_GUARDED_BY(m_mutex);
};

}  // namespace apps::monitor
