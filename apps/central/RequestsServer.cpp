#include <ctime>

#include "apps/central/Requests.h"
#include "apps/common/Utf8.h"
#include "NyServer/host/NyFctIpUtil.h"

using namespace apps;

namespace requests {

namespace {

bool shutDownServer(const Request& request) {
    request.server.events().add("session " + std::to_string(request.session) +
                                " shuts the server down");
    request.server.requestShutDown();
    return true;
}

// Seconds since 1970 in the 32 bits of the wire.
bool getCurrentTime(const Request& request) {
    request.reply.scalar(static_cast<LONG>(std::time(nullptr)));
    return true;
}

bool verifyCoherancy(const Request& request) {
    for (const std::string& fault : request.server.tables().faults())
        request.server.events().warn("incoherent: " + fault);
    return true;
}

bool getMachineIdentifiant(const Request& request) {
    request.reply.text(NyFctIpUtil::getStrMachineID());
    return true;
}

bool getEventListFromEventViewer(const Request& request) {
    LONG count = 0;
    if (!readPayload(request.payload, count)) return false;
    request.reply.text(fromUtf8(request.server.events().newest(count)));
    return true;
}

}  // namespace

const std::vector<Row> kServerRequests = {
    {NySe::actionShutDownServer, &shutDownServer, &nothing},
    {NySe::actionGetCurrentTime, &getCurrentTime, &nothing},
    {NySe::actionVerifyCoherancy, &verifyCoherancy, &nothing},
    {NySe::actionGetMachineIdentifiant, &getMachineIdentifiant, &nothing},
    {NySe::actionGetEventListFromEventViewer, &getEventListFromEventViewer, &emptyMessage},
};

}  // namespace requests
