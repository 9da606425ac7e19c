// The requests of a central server's clients: a row of its family's table each.
#pragma once

#include <vector>

#include "apps/central/CentralServer.h"
#include "apps/central/Reply.h"
#include "NyServer/detail/ExceptionBoundary.h"

struct Request {
    CentralServer& server;
    const LONG session;
    CMemFile& payload;  // at its start
    Reply& reply;
};

// Does what the client asks and fills the reply in. A payload that makes no sense changes nothing
// and gets the action's failure answer; an unknown action gets none.
void answerRequest(LONG action, const Request& request);

namespace requests {

// Reads the values in their order from the payload, which is left behind them. False when they are
// not there.
template <class... Values>
bool readPayload(CMemFile& payload, Values&... values) {
    return NySe::succeeds([&] {
        CArchive archive(&payload, CArchive::load);
        (archive >> ... >> values);
        archive.Close();
    });
}

// What the payload holds behind the values that were read.
std::string restOf(CMemFile& payload);

// Answers for a payload that makes no sense.
inline void nothing(Reply&) {}
inline void zeroByte(Reply& reply) {
    reply.scalar<BYTE>(0);
}
inline void minusOne(Reply& reply) {
    reply.scalar<LONG>(-1);
}
inline void emptyMessage(Reply& reply) {
    reply.message({});
}

// One row a request.
struct Row {
    NySe::ActionType action;
    bool (*handler)(const Request& request);  // false when the payload makes no sense
    void (*failure)(Reply& reply);            // answers then
};

// The families, each in a source of its own.
extern const std::vector<Row> kSessionRequests;
extern const std::vector<Row> kLockRequests;
extern const std::vector<Row> kConnectionRequests;
extern const std::vector<Row> kUserRequests;
extern const std::vector<Row> kServerRequests;

}  // namespace requests
