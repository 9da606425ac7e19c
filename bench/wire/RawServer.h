// A server that answers requests with as few calls as it can be done with, and the calls that a
// client needs at least.
#pragma once

#include <string>

#include "tests/socket/Peers.h"

namespace bench {

// Answers isAlive with 512 and lock with a granting byte; takes anything else without an answer.
void answerRequests(peers::Connection& connection);

// send, select with a time-out, recv: whether the answer came, in one piece.
bool exchange(SOCKET socket, const std::string& request, int answerBytes);

// The same select as the library's, with a time-out in seconds.
bool awaitReadable(SOCKET socket, long seconds, long microseconds = 0);

}  // namespace bench
