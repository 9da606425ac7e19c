#include "NyServer/socket/SocketCodes.h"

#include "NyServer/socket/SocketErrorTable.h"

const int NY_UTE_SUCCESS = UTE_SUCCESS;
const int NY_UTE_ERROR = UTE_ERROR;
const int NY_UTE_SOCK_BIND_FAILED = UTE_SOCK_BIND_FAILED;

const wchar_t* SocketErrorText(const SOCKET* socket, int* code) {
    int error = 0;
    int length = sizeof error;
    bool asked =
        getsockopt(*socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length) == 0;
    if (!asked) error = WSAGetLastError();
    if (code) *code = error;
    return asked ? pendingErrorText(error) : queryErrorText(error);
}
