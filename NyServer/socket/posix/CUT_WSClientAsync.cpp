// Asynchronous notification is by messages of a window, which this platform does not have: its
// functions fail, and its hooks are never called.
#include "NyServer/socket/CUT_WSClient.h"

void CUT_WSClient::LookUpsDeleter::operator()(HostLookUps*) const {}

int CUT_WSClient::InitAsync(HINSTANCE) {
    return OnError(UTE_ERROR);
}

int CUT_WSClient::SetAsyncNotify(long) {
    return OnError(UTE_ERROR);
}

int CUT_WSClient::AsyncGetAddressFromName(const char*, char*, int) {
    return OnError(UTE_ERROR);
}

int CUT_WSClient::AsyncGetNameFromAddress(const char*, char*, int) {
    return OnError(UTE_ERROR);
}

LRESULT CALLBACK CUT_WSClient::WndProc(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

void CUT_WSClient::endLookUps() {}
void CUT_WSClient::dropNotificationWindow() {}
void CUT_WSClient::OnAsyncNotify(int, int) {}
void CUT_WSClient::OnAsyncGetNameNotify(int) {}
void CUT_WSClient::OnAsyncGetAddressNotify(int) {}
