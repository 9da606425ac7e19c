#pragma once

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/Mutex.h"

// The asynchronous host look-ups of one object whose results the system may still write. A look-up
// may be announced on another thread, even before its request has been returned to the thread that
// starts it. Every function may be called by any thread.
class HostLookUps {
  public:
    // Starts a look-up: `request` is one of the WSAAsyncGet calls. False when the system does not
    // accept it or there is no memory.
    bool start(const std::function<HANDLE()>& request);

    // A look-up has been announced. Without effect for one that was not started here.
    void finish(HANDLE request);

    // Cancels the pending look-ups. One that the system does not cancel stays pending until it is
    // announced, since its result is still written.
    void cancel();

    // Whether a look-up has been started and has been neither announced nor cancelled.
    bool arePending() const;

  private:
    mutable NySe::Mutex m_mutex;
    std::vector<HANDLE> m_requests NY_GUARDED_BY(m_mutex);
};
