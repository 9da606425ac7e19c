// The system's calls as they are, without the library's port: the floor of what is measured.
#pragma once

#include <string>

#include "NyServer/base/port/Platform.h"

namespace bench {

// Keeps all threads of the process on one core.
void useOneCore();

bool sendRaw(SOCKET socket, const std::string& bytes);
bool receiveRaw(SOCKET socket, char* buffer, int count);
bool awaitReadable(SOCKET socket, long seconds, long microseconds = 0);

}  // namespace bench
