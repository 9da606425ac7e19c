// StopRequest: Ctrl+C and the other events by which the console ends a program, as a kernel event.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace apps {

// While an object exists, such a request sets the event and does not end the program. At most one
// object exists at a time.
class StopRequest {
  public:
    // Resets the event. Throws std::runtime_error if the event cannot be created.
    StopRequest();
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    // Returns the event, for waiting. Any thread may call it at any time. Throws as the constructor
    // does, but not after a constructor has succeeded.
    static HANDLE event();
    static bool isRequested() { return ::WaitForSingleObject(event(), 0) == WAIT_OBJECT_0; }
    // Requests the stop from inside the program.
    static void request() { ::SetEvent(event()); }
};

}  // namespace apps
