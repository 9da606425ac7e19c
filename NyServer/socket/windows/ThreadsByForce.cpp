// Ending, suspending and resuming threads by force.
// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/socket/AcceptThread.h"

void CUT_WSServer::AcceptThread::terminate(uintptr_t startedThread, DWORD milliseconds) {
    const HANDLE thread = reinterpret_cast<HANDLE>(startedThread);
    if (!::TerminateThread(thread, 1) || !waitForEnd(milliseconds)) return;
    const NySe::UniqueKernelHandle notClosedByTheThread(thread);
    m_rundown->leave(m_entry);
    closeAccepted();
    m_self.reset();
}

void CUT_WSServer::CancelBlockingCall() {
    ::WSACancelBlockingCall();
}

// The identifiers are passed as handles on purpose; no handle is opened.
int CUT_WSServer::ThreadListSuspend() {
    return ThreadListForEach(
        [](ThreadListEntry& entry) { ::SuspendThread(UlongToHandle(entry.threadId)); });
}

int CUT_WSServer::ThreadListResume() {
    return ThreadListForEach(
        [](ThreadListEntry& entry) { ::ResumeThread(UlongToHandle(entry.threadId)); });
}
