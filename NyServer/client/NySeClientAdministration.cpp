// The requests with which the central server is administered.
#include "NyServer/client/ClientExchange.h"

void NySeClientApp::shutDownServer() {
    request(NySe::actionShutDownServer);
}

void NySeClientApp::verifyCoherancy() {
    request(NySe::actionVerifyCoherancy);
}

CString NySeClientApp::getEventListFromEventViewer(int value) {
    CString events;
    if (request(NySe::actionGetEventListFromEventViewer, value)) receiveString(events);
    return events;
}
