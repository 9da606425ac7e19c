// Every request of the client: what it sends, what may come back, and what its caller has then.
#pragma once

#include <functional>
#include <string>
#include <vector>

class NySeClientApp;

struct ClientRequest {
    struct Answer {
        std::vector<std::string> pieces;  // each is sent once the client has received the last one
        std::string result;
    };

    std::string name;     // as in a test's name
    std::string request;  // the bytes
    // Calls, and tells in a text all that the caller has from it.
    std::function<std::string(NySeClientApp&)> call;
    std::string failure;           // that text when nothing comes
    std::vector<Answer> answers;   // complete, and at once; "" for a request without an answer
    std::vector<Answer> broken{};  // the server closes after each
    std::vector<Answer> pieces{};  // as far as a request takes an answer in pieces

    bool isAnswered() const { return !answers.front().pieces.front().empty(); }
};

const std::vector<ClientRequest>& clientRequests();
