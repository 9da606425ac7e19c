// Every request of the client, with a call that sends its golden bytes. A new request has a row in
// one of these lists.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "NyServer/client/NySeClientApp.h"

struct ScalarAnswer {
    std::string reply;
    LONG result;
};

// Answered by one number.
struct ScalarRequest {
    const char* name;
    LONG failure;
    std::vector<ScalarAnswer> answers;
    std::function<LONG(NySeClientApp&)> call;
};
const std::vector<ScalarRequest>& scalarRequests();

// Answered by a table.
struct TableRequest {
    const char* name;
    const char* reply;        // the golden reply, of two records
    std::string beforeReply;  // what the server sends first
    std::shared_ptr<QoArraySerial2> (*makeTable)();
    QoObject2* (*makeRecord)();
    std::function<void(NySeClientApp&, QoArraySerial2&)> call;
};
const std::vector<TableRequest>& tableRequests();

// Answered by a text.
struct TextRequest {
    const char* name;
    std::function<CString(NySeClientApp&)> call;
};
const std::vector<TextRequest>& textRequests();

// Not answered.
struct UnansweredRequest {
    const char* name;
    std::function<void(NySeClientApp&)> call;
};
const std::vector<UnansweredRequest>& unansweredRequests();

// Those that read an answer, the ones above among them.
struct AnsweredCall {
    const char* name;
    std::string answer;  // one that the call would take
    // Calls, and says whether that returned the failure value.
    std::function<bool(NySeClientApp&)> fails;
};
const std::vector<AnsweredCall>& answeredCalls();
