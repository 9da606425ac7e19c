#include <algorithm>

#include "apps/central/Requests.h"

bool requests::isAlive(const Request& request) {
    request.reply.scalar<LONG>(NySe::kAliveAnswer);
    return true;
}

bool requests::initializeSchema(const Request& request) {
    LONG asked = 0;
    if (!readPayload(request.payload, asked)) return false;
    request.reply.scalar(std::clamp<LONG>(asked, 0, NySe::schema2015));
    return true;
}

bool requests::getVersion(const Request& request) {
    request.reply.scalar(CentralServer::kVersion);
    return true;
}
