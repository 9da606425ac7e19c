#include <algorithm>

#include "apps/central/Requests.h"

namespace requests {

namespace {

void currentSchema(Reply& reply) {
    reply.scalar<LONG>(NySe::schema2015);
}

bool isAlive(const Request& request) {
    request.reply.scalar<LONG>(NySe::kAliveAnswer);
    return true;
}

bool initializeSchema(const Request& request) {
    LONG asked = 0;
    if (!readPayload(request.payload, asked)) return false;
    request.reply.scalar(std::clamp<LONG>(asked, 0, NySe::schema2015));
    return true;
}

bool getVersion(const Request& request) {
    request.reply.scalar(CentralServer::kVersion);
    return true;
}

}  // namespace

const std::vector<Row> kSessionRequests = {
    {NySe::actionIsAlive, &isAlive, &nothing},
    {NySe::actionInitializeSchema, &initializeSchema, &currentSchema},
    {NySe::actionGetVersion, &getVersion, &nothing},
};

}  // namespace requests
