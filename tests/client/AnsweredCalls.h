// Every call of the client that reads an answer.
#pragma once

#include <functional>
#include <string>
#include <vector>

class NySeClientApp;

struct AnsweredCall {
    const char* name;
    std::string answer;  // one that the call would take
    // Calls, and says whether that returned the failure value.
    std::function<bool(NySeClientApp&)> fails;
};

const std::vector<AnsweredCall>& answeredCalls();
