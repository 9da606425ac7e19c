#pragma once

#include <functional>
#include <mutex>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"

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

    // Cancels what is under way, and forgets it where the system stops writing.
    void cancel();

    bool areUnderWay() const;

  private:
    mutable std::mutex m_lock;
    std::vector<HANDLE> m_requests;
};
