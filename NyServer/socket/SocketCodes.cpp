#include "NyServer/socket/SocketCodes.h"

#include "NyServer/socket/SocketErrorTable.h"

const int NY_UTE_SUCCESS = UTE_SUCCESS;
const int NY_UTE_ERROR = UTE_ERROR;
const int NY_UTE_SOCK_BIND_FAILED = UTE_SOCK_BIND_FAILED;

const WCHAR* SocketErrorText(const SOCKET* socket, int* code) {
    int error = 0;
    const bool asked = port::getSocketOption(*socket, SO_ERROR, &error, sizeof error) == 0;
    if (!asked) error = port::lastSocketError();
    if (code) *code = error;
    return asked ? pendingErrorText(error) : queryErrorText(error);
}
