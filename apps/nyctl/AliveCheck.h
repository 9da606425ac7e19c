// AliveCheck: whether the server still replies.
#pragma once

#include <chrono>
#include <memory>

#include "NyServer/client/NySeClientApp.h"

namespace apps::nyctl {

// Sends the server a request now and then, and waits for the reply on a thread of its own, which
// blocks the signals that a HeldCommand receives. While the object exists, the client is used by
// nothing else. Used by one thread.
class AliveCheck {
  public:
    explicit AliveCheck(NySeClientApp& client);
    // A reply that is due gets another second. After that the connection is interrupted.
    ~AliveCheck();
    AliveCheck(const AliveCheck&) = delete;
    AliveCheck& operator=(const AliveCheck&) = delete;

    // Returns false if the connection is lost or the server has not replied in time. Does not wait,
    // unless the system has no thread.
    bool isAlive();

  private:
    using Clock = std::chrono::steady_clock;
    class Request;

    NySeClientApp& m_client;
    Clock::time_point m_next;
    std::unique_ptr<Request> m_request;  // null while none waits for its reply
};

}  // namespace apps::nyctl
