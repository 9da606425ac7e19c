#pragma once

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"

// The English text of the socket's pending error, not of the calling thread's last error; when the
// socket cannot be asked, the text of that failure. The text is static. `code` may be null;
// otherwise it receives the error number that the text describes.
NYSERVER_API const wchar_t* SocketErrorText(const SOCKET* socket, int* code);
