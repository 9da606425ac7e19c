#pragma once

#include <functional>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/Mutex.h"

// The pending asynchronous host look-ups of one object, into which the system writes their results.
// A look-up may be announced on another thread, even before the call that starts it has returned.
// Any thread may call these functions.
class HostLookUps {
  public:
    // Starts a look-up; `request` calls one of the WSAAsyncGet functions. Returns false if the
    // system refuses it or out of memory.
    bool start(const std::function<HANDLE()>& request);

    // Records that a look-up was announced. No effect if it was not started here.
    void finish(HANDLE request);

    // Cancels the pending look-ups. One that the system does not cancel stays pending until it is
    // announced, because its result is still written.
    void cancel();

    // Returns whether a look-up was started and neither announced nor cancelled.
    bool arePending() const;

  private:
    mutable NySe::Mutex m_mutex;
    std::vector<HANDLE> m_requests NY_GUARDED_BY(m_mutex);
};
