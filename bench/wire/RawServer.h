// A server that replies with as few system calls as possible, and a client that does the same.
#pragma once

#include <string>

#include "tests/socket/Peers.h"

namespace bench {

// Answers isAlive with 512 and lock with a granting byte; other requests get no reply.
void answerRequests(peers::Connection& connection);

// send, a wait with a time-out, recv: whether the answer came, in one piece.
bool exchange(SOCKET socket, const std::string& request, int answerBytes);

}  // namespace bench
