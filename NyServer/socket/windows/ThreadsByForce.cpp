// Ending, suspending and resuming threads by force.
// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/AcceptThread.h"

void CUT_WSServer::AcceptThread::terminate(uintptr_t startedThread, DWORD milliseconds) {
    if (!::TerminateThread(reinterpret_cast<HANDLE>(startedThread), 1) || !waitForEnd(milliseconds))
        return;
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
