#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <string>
#include <utility>

#include "NyServer/base/WindowsPrelude.h"

#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#else
#define __lsan_ignore_object(object) static_cast<void>(object)
#endif

namespace {

// A message on its way to its window's thread; `answer` is there when its sender waits.
struct Arrival {
    MSG message;
    std::promise<LRESULT>* answer;
};

struct Queue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Arrival> arrivals;
    bool isQuitting = false;

    void put(Arrival arrival) {
        const std::lock_guard lock(mutex);
        arrivals.push_back(arrival);
        changed.notify_all();
    }
    // The first message for the window, or any, of those in the range; nothing if there is none.
    bool takePosted(MSG& found, HWND window, UINT first, UINT last) {
        const std::lock_guard lock(mutex);
        for (auto arrival = arrivals.begin(); arrival != arrivals.end(); ++arrival) {
            found = arrival->message;
            if (arrival->answer || (window && found.hwnd != window)) continue;
            if (found.message < first || found.message > last) continue;
            arrivals.erase(arrival);
            return true;
        }
        return false;
    }
    // The next arrival; nothing once the thread is to quit.
    bool take(Arrival& next) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isQuitting || !arrivals.empty(); });
        if (arrivals.empty()) return false;
        next = arrivals.front();
        arrivals.pop_front();
        return true;
    }
};

thread_local const auto queueOfThread = std::make_shared<Queue>();

// Shared by those who only look, so that it orders nothing between threads that post. The queue of
// a window does, as the system's does too.
std::shared_mutex windowsLock;
std::set<HWND> windows;
std::map<std::wstring, WNDCLASSW> classes;

}  // namespace

struct Window {
    WNDPROC procedure;
    std::shared_ptr<Queue> queue;
    std::map<int, LONG_PTR> longs;
};

namespace {

std::shared_ptr<Queue> queueOf(HWND window) {
    const std::shared_lock lock(windowsLock);
    return windows.count(window) > 0 ? window->queue : nullptr;
}

}  // namespace

HINSTANCE GetModuleHandleW(const wchar_t*) {
    return nullptr;
}

UINT RegisterWindowMessageW(const wchar_t*) {
    return 0xC000;
}

WORD RegisterClassW(const WNDCLASSW* description) {
    const std::lock_guard lock(windowsLock);
    return classes.emplace(description->lpszClassName, *description).second;
}

BOOL UnregisterClassW(const wchar_t* name, HINSTANCE) {
    const std::lock_guard lock(windowsLock);
    return classes.erase(name) > 0;
}

BOOL GetClassInfoW(HINSTANCE, const wchar_t* name, WNDCLASSW* description) {
    const std::shared_lock lock(windowsLock);
    const auto found = classes.find(name);
    if (found == classes.end()) return FALSE;
    *description = found->second;
    return TRUE;
}

HWND CreateWindowExW(DWORD, const wchar_t* className, const wchar_t*, DWORD, int, int, int, int,
                     HWND, HMENU, HINSTANCE, void*) {
    const std::lock_guard lock(windowsLock);
    const HWND window = new Window{classes.at(className).lpfnWndProc, queueOfThread, {}};
    windows.insert(window);
    return window;
}

BOOL DestroyWindow(HWND window) {
    window->procedure(window, WM_DESTROY, 0, 0);
    const std::lock_guard lock(windowsLock);
    windows.erase(window);
    delete window;
    return TRUE;
}

BOOL IsWindow(HWND window) {
    const std::shared_lock lock(windowsLock);
    return windows.count(window) > 0;
}

LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value) {
    return std::exchange(window->longs[index], value);
}

LONG_PTR GetWindowLongPtrW(HWND window, int index) {
    return window->longs[index];
}

LRESULT DefWindowProcW(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // By rule a block is the window's from here on, and nobody's when the window has gone.
    __lsan_ignore_object(reinterpret_cast<const void*>(lParam));
    const auto queue = queueOf(window);
    if (queue) queue->put({{window, message, wParam, lParam}, nullptr});
    return queue != nullptr;
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto queue = queueOf(window);
    if (!queue) return 0;
    if (queue == queueOfThread) return window->procedure(window, message, wParam, lParam);
    std::promise<LRESULT> answer;
    queue->put({{window, message, wParam, lParam}, &answer});
    return answer.get_future().get();
}

LRESULT SendMessageTimeoutW(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT, UINT,
                            UINT_PTR*) {
    if (!::IsWindow(window)) return 0;
    ::SendMessageW(window, message, wParam, lParam);
    return 1;
}

void PostQuitMessage(int) {
    const std::lock_guard lock(queueOfThread->mutex);
    queueOfThread->isQuitting = true;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT) {
    return queueOfThread->takePosted(*message, window, first, last);
}

BOOL GetMessageW(MSG* message, HWND, UINT, UINT) {
    for (Arrival arrival; queueOfThread->take(arrival);) {
        *message = arrival.message;
        if (!arrival.answer) return TRUE;
        arrival.answer->set_value(::DispatchMessageW(message));
    }
    return FALSE;
}

LRESULT DispatchMessageW(const MSG* message) {
    if (!::IsWindow(message->hwnd)) return 0;
    return message->hwnd->procedure(message->hwnd, message->message, message->wParam,
                                    message->lParam);
}
