// No thread is ended, suspended or resumed by force: it would keep the locks that it holds.
#include "NyServer/socket/AcceptThread.h"

void CUT_WSServer::AcceptThread::terminate(uintptr_t, DWORD) {}

void CUT_WSServer::CancelBlockingCall() {}

int CUT_WSServer::ThreadListSuspend() {
    return ThreadListGetLength();
}

int CUT_WSServer::ThreadListResume() {
    return ThreadListGetLength();
}
