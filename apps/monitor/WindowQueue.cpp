#include "apps/monitor/WindowQueue.h"

#include <utility>

namespace apps::monitor {

namespace {

// A message queue that is full accepts no message for a while.
constexpr DWORD kPause = 10;  // ms

bool isFull() {
    return ::GetLastError() == ERROR_NOT_ENOUGH_QUOTA;
}

}  // namespace

void WindowQueue::post(Call call) {
    {
        const NySe::MutexLock lock(m_mutex);
        m_calls.push_back(std::move(call));
    }
    while (!::PostMessageW(m_window, kMessage, 0, 0) && isFull()) ::Sleep(kPause);
}

void WindowQueue::runNext() {
    Call call;
    {
        const NySe::MutexLock lock(m_mutex);
        if (m_calls.empty()) return;  // any program can post the message
        call = std::move(m_calls.front());
        m_calls.pop_front();
    }
    call();
}

}  // namespace apps::monitor
