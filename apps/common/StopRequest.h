// StopRequest: the requests by which a console, a person or the system ends a program: Ctrl+C and
// the like on Windows; SIGINT, SIGTERM and SIGHUP elsewhere.
#pragma once

#include "NyServer/base/port/Platform.h"

namespace apps {

// While an object exists, such a request is noted and does not end the program. A signal that was
// ignored before stays ignored. At most one object exists at a time.
class StopRequest {
  public:
    // Discards earlier requests. Throws std::runtime_error if the system refuses what it needs.
    StopRequest();
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    // Returns whether a stop is requested, after waiting for that for at most the time.
    static bool wait(DWORD milliseconds);
    static bool isRequested() { return wait(0); }
    // Requests the stop from inside the program. Any thread may call it.
    static void request();
};

}  // namespace apps
