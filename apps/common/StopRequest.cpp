#include "apps/common/StopRequest.h"

namespace {

BOOL WINAPI onControl(DWORD) {
    StopRequest::make();
    return TRUE;
}

}  // namespace

// Never closed: the system calls onControl on a thread of its own, which may still run when the
// handler has been taken away.
HANDLE StopRequest::event() {
    static const HANDLE made = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    return made;
}

StopRequest::StopRequest() {
    ::ResetEvent(event());
    ::SetConsoleCtrlHandler(&onControl, TRUE);
}

StopRequest::~StopRequest() {
    ::SetConsoleCtrlHandler(&onControl, FALSE);
}
