// The result codes of the socket layer, each with its number, name and meaning, and the texts of
// socket errors. Hosts compare with the numbers: do not change them, and never give a number a new
// meaning.
#pragma once

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"

// Expands its argument as X(name, number, text) for each code.
#define NY_SOCKET_CODES(X)                                                                         \
    X(UTE_SUCCESS, 0, "success")                                                                   \
    X(UTE_ERROR, 1, "a socket call failed")                                                        \
    X(UTE_WORKER_SEND_FAILED, 4, "a send of a server's worker failed")                             \
    X(UTE_CONNECT_TIMEOUT, 5, "the connect did not finish within the time-out")                    \
    X(UTE_NAME_LOOKUP_FAILED, 7, "the host look-up found nothing")                                 \
    X(UTE_SOCK_NOT_OPEN, 15, "the socket is not open")                                             \
    X(UTE_SOCK_ALREADY_OPEN, 16, "the socket is open already")                                     \
    X(UTE_SOCK_CREATE_FAILED, 17, "the socket could not be made")                                  \
    X(UTE_SOCK_BIND_FAILED, 18, "bind failed")                                                     \
    X(UTE_SOCK_CONNECT_FAILED, 19, "connect failed")                                               \
    X(UTE_SOCK_TIMEOUT, 20, "a receive waited past its time-out")                                  \
    X(UTE_SOCK_RECEIVE_ERROR, 21, "a receive failed")                                              \
    X(UTE_SOCK_SEND_ERROR, 22, "a send failed or sent nothing")                                    \
    X(UTE_SOCK_LISTEN_ERROR, 23, "listen failed")                                                  \
    X(UTE_INVALID_OPEN_TYPE, 26, "a receive into a data source opens it for write or append only") \
    X(UTE_BUFFER_TOO_SHORT, 35, "a looked-up name or address does not fit the caller's buffer")    \
    X(UTE_DS_OPEN_FAILED, 79, "the data source refused to open")                                   \
    X(UTE_DS_WRITE_FAILED, 81, "the data source wrote less than it was given")                     \
    X(UTE_ABORTED, 90, "a transfer was stopped by its owner")                                      \
    X(UTE_CONNECT_RESOLVE_FAILED, 92, "the host name could not be turned into an address")

enum SocketCode : int {
#define NY_SOCKET_CODE_VALUE(name, number, text) name = number,
    NY_SOCKET_CODES(NY_SOCKET_CODE_VALUE)
#undef NY_SOCKET_CODE_VALUE
};

// The three codes that callers compare with most, as exported data.
extern "C" {
extern NYSERVER_API const int NY_UTE_SUCCESS;
extern NYSERVER_API const int NY_UTE_ERROR;
extern NYSERVER_API const int NY_UTE_SOCK_BIND_FAILED;
}

// Returns the English text of the socket's pending error (SO_ERROR), not of the calling thread's
// last error. If it cannot be read, returns the text of that failure. The text is static. `code`,
// unless null, receives the error number that the text describes.
NYSERVER_API const wchar_t* SocketErrorText(const SOCKET* socket, int* code);
