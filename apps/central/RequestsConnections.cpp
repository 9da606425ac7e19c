#include "apps/central/Requests.h"

namespace requests {

namespace {

bool getConnection(const Request& request) {
    request.reply.message(request.server.tables().connections());
    return true;
}

bool openConnection(const Request& request) {
    CString name;
    if (!readPayload(request.payload, name)) return false;
    request.reply.scalar(request.server.tables().openConnection(request.session, name));
    return true;
}

bool closeConnection(const Request& request) {
    LONG id = 0;
    if (!readPayload(request.payload, id)) return false;
    request.server.tables().closeConnection(request.session, id);
    return true;
}

bool isOpenConnectionBy(const Request& request) {
    LONG id = 0;
    if (!readPayload(request.payload, id)) return false;
    request.reply.message(request.server.tables().connectionOpeners(id));
    return true;
}

// The second number is between the applications; only the object goes on.
bool sendConnectionData(const Request& request) {
    LONG id = 0;
    LONG second = 0;
    if (!readPayload(request.payload, id, second)) return false;
    const std::string object = restOf(request.payload);
    if (object.empty()) return false;
    request.server.tables().sendToOpeners(request.session, id, object);
    return true;
}

}  // namespace

const std::vector<Row> kConnectionRequests = {
    {NySe::actionGetConnection, &getConnection, &nothing},
    {NySe::actionOpenConnection, &openConnection, &minusOne},
    {NySe::actionCloseConnection, &closeConnection, &nothing},
    {NySe::actionIsOpenConnectionBy, &isOpenConnectionBy, &emptyMessage},
    {NySe::actionSendConnectionData, &sendConnectionData, &nothing},
};

}  // namespace requests
