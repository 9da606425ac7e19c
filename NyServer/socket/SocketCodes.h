// The result codes of the socket layer, and the texts of socket errors. Hosts compare with the
// numbers: do not change them, and never give a number a new meaning.
#pragma once

#include "NyServer/base/port/Port.h"
#include "NyServer/NyServerApi.h"

enum SocketCode : int {
    UTE_SUCCESS = 0,               // success
    UTE_ERROR = 1,                 // a socket call failed
    UTE_WORKER_SEND_FAILED = 4,    // a send of a server's worker failed
    UTE_CONNECT_TIMEOUT = 5,       // the connect did not finish within the time-out
    UTE_NAME_LOOKUP_FAILED = 7,    // the host look-up found nothing
    UTE_SOCK_NOT_OPEN = 15,        // the socket is not open
    UTE_SOCK_ALREADY_OPEN = 16,    // the socket is open already
    UTE_SOCK_CREATE_FAILED = 17,   // the socket could not be created
    UTE_SOCK_BIND_FAILED = 18,     // bind failed
    UTE_SOCK_CONNECT_FAILED = 19,  // connect failed
    UTE_SOCK_TIMEOUT = 20,         // a receive waited past its time-out
    UTE_SOCK_RECEIVE_ERROR = 21,   // a receive failed
    UTE_SOCK_SEND_ERROR = 22,      // a send failed or sent nothing
    UTE_SOCK_LISTEN_ERROR = 23,    // listen failed
    UTE_INVALID_OPEN_TYPE = 26,    // a receive into a data source opens it for write or append only
    UTE_BUFFER_TOO_SHORT = 35,     // a looked-up name or address does not fit the caller's buffer
    UTE_DS_OPEN_FAILED = 79,       // the data source refused to open
    UTE_DS_WRITE_FAILED = 81,      // the data source wrote less than it was given
    UTE_ABORTED = 90,              // a transfer was stopped by its owner
    UTE_CONNECT_RESOLVE_FAILED = 92,  // the host name could not be turned into an address
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
NYSERVER_API const WCHAR* SocketErrorText(const SOCKET* socket, int* code);
