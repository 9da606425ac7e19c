// WindowQueue: function calls that other threads queue for the thread of the window.
#pragma once

#include <deque>
#include <functional>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/Mutex.h"

namespace apps::monitor {

// Each call is announced by one posted message kMessage, on which the window calls runNext. So the
// order of calls and of other posted messages is kept.
class WindowQueue {
  public:
    using Call = std::function<void()>;
    static constexpr UINT kMessage = WM_APP;

    // Sets the window. REQUIRES: called before any post.
    void setWindow(HWND window) { m_window = window; }

    // Any thread may call it. If the window is destroyed, the call is never run.
    void post(Call call);

    // Runs the oldest call. REQUIRES: called on the thread of the window.
    void runNext();

  private:
    HWND m_window = nullptr;
    NySe::Mutex m_mutex;
    std::deque<Call> m_calls NY_GUARDED_BY(m_mutex);
};

}  // namespace apps::monitor
