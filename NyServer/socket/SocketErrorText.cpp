#include "NyServer/socket/SocketErrorText.h"

#include "NyServer/socket/SocketErrorTable.h"

const wchar_t* SocketErrorText(const SOCKET* socket, int* code) {
    int error = 0;
    int length = sizeof error;
    bool asked =
        getsockopt(*socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) == 0;
    if (!asked) error = WSAGetLastError();
    if (code) *code = error;
    return asked ? pendingErrorText(error) : queryErrorText(error);
}
