// The requests of a central server's clients. Each has a handler; the table of them is in
// Requests.cpp.
#pragma once

#include "apps/central/CentralServer.h"
#include "apps/central/Reply.h"
#include "NyServer/ExceptionBoundary.h"

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

// The handlers. False when the payload makes no sense.

bool isAlive(const Request& request);
bool initializeSchema(const Request& request);
bool getVersion(const Request& request);

bool getLock(const Request& request);
bool lock(const Request& request);
bool unLock(const Request& request);
bool isLockBy(const Request& request);

bool getConnection(const Request& request);
bool openConnection(const Request& request);
bool closeConnection(const Request& request);
bool isOpenConnectionBy(const Request& request);
bool sendConnectionData(const Request& request);

bool getAllUser(const Request& request);
bool getPortClient(const Request& request);
bool getAnotherPort(const Request& request);
bool updateUserName(const Request& request);
bool sendUserData(const Request& request);
bool sendAllUserData(const Request& request);

bool shutDownServer(const Request& request);
bool getCurrentTime(const Request& request);
bool verifyCoherancy(const Request& request);
bool getMachineIdentifiant(const Request& request);
bool getEventListFromEventViewer(const Request& request);

}  // namespace requests
