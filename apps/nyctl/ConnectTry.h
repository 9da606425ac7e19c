// Whether anybody takes connections at an address.
#pragma once

#include <chrono>
#include <string>

namespace apps::nyctl {

enum class ConnectOutcome { connected, refused, unreachable, silent };

// Connects to `port` of the dotted address and closes again. silent: nothing came back within
// `timeOut`. REQUIRES: Winsock is started.
ConnectOutcome tryConnect(const std::string& address, int port, std::chrono::seconds timeOut);

}  // namespace apps::nyctl
