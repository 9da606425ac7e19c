// A connect that reports why it fails.
#pragma once

#include <chrono>
#include <string>

namespace apps::nyctl {

enum class ConnectOutcome { connected, refused, unreachable, silent };

// Connects to the port of the dotted address and disconnects. Returns silent if there was no reply
// within `timeOut`. REQUIRES: port::startSockets was called.
ConnectOutcome tryConnect(const std::string& address, int portNumber, std::chrono::seconds timeOut);

}  // namespace apps::nyctl
