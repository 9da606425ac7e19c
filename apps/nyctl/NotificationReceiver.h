// NotificationReceiver: passes the notifications of a listener to the thread that waits for them.
#pragma once

#include <functional>
#include <memory>

#include "NyServer/framing/NySeActions.h"
#include "NyServer/listener/NyServerApp.h"

namespace apps::nyctl {

// On Windows they arrive as messages of a hidden window, elsewhere by the listener's function. The
// listener must outlive it. Used by the thread that creates it.
class NotificationReceiver {
  public:
    using Show = std::function<void(NySe::ActionType action, CMemFile& payload)>;

    // `show` is called by `receive`, once for each notification. Throws std::runtime_error if the
    // system has no window for it, or elsewhere no thread or memory, and std::bad_alloc.
    NotificationReceiver(NyServerApp& listener, Show show);
    // Discards the notifications that have not been received.
    ~NotificationReceiver();
    NotificationReceiver(const NotificationReceiver&) = delete;
    NotificationReceiver& operator=(const NotificationReceiver&) = delete;

    // Receives one notification, after waiting for one for at most the time. Returns false if none
    // has arrived.
    bool receive(DWORD milliseconds);

  private:
    class Source;

    std::unique_ptr<Source> m_source;
};

}  // namespace apps::nyctl
