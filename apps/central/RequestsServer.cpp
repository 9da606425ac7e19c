#include <ctime>

#include "apps/central/Requests.h"
#include "apps/common/Utf8.h"
#include "NyServer/host/NyFctIpUtil.h"

using namespace apps;

bool requests::shutDownServer(const Request& request) {
    request.server.events().add("session " + std::to_string(request.session) +
                                " shuts the server down");
    request.server.requestShutDown();
    return true;
}

// Seconds since 1970 in the 32 bits of the wire.
bool requests::getCurrentTime(const Request& request) {
    request.reply.scalar(static_cast<LONG>(std::time(nullptr)));
    return true;
}

bool requests::verifyCoherancy(const Request& request) {
    for (const std::string& fault : request.server.tables().faults())
        request.server.events().warn("incoherent: " + fault);
    return true;
}

bool requests::getMachineIdentifiant(const Request& request) {
    request.reply.text(NyFctIpUtil::getStrMachineID());
    return true;
}

bool requests::getEventListFromEventViewer(const Request& request) {
    LONG count = 0;
    if (!readPayload(request.payload, count)) return false;
    request.reply.text(fromUtf8(request.server.events().newest(count)));
    return true;
}
