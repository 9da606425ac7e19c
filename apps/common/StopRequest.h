// StopRequest: Ctrl+C, and whatever else the console ends a program with, as an event to wait for.
#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace apps {

// While one lives, such a request sets the event and does not end the program. One lives at a time.
class StopRequest {
  public:
    // No request has been made. Throws std::runtime_error when the system makes no event.
    StopRequest();
    ~StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;

    // The program's one event, for waiting. Any thread may use it at any time; it throws as the
    // constructor does, and not once that has been through.
    static HANDLE event();
    static bool isMade() { return ::WaitForSingleObject(event(), 0) == WAIT_OBJECT_0; }
    // Requests the stop from inside the program.
    static void make() { ::SetEvent(event()); }
};

}  // namespace apps
