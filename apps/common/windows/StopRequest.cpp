#include "apps/common/StopRequest.h"

#include <stdexcept>

namespace apps {

namespace {

HANDLE makeEvent() {
    const HANDLE made = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (made == nullptr) throw std::runtime_error("the event cannot be created");
    return made;
}

// Never closed: the system calls onControl on a thread of its own, which may still run after the
// handler is removed.
HANDLE event() {
    static const HANDLE made = makeEvent();
    return made;
}

BOOL WINAPI onControl(DWORD) {
    StopRequest::request();
    return TRUE;
}

}  // namespace

StopRequest::StopRequest() {
    ::ResetEvent(event());
    ::SetConsoleCtrlHandler(&onControl, TRUE);
}

StopRequest::~StopRequest() {
    ::SetConsoleCtrlHandler(&onControl, FALSE);
}

bool StopRequest::wait(DWORD milliseconds) {
    return ::WaitForSingleObject(event(), milliseconds) == WAIT_OBJECT_0;
}

void StopRequest::request() {
    ::SetEvent(event());
}

}  // namespace apps
