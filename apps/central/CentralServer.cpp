#include "apps/central/CentralServer.h"

#include <new>

#include "apps/central/CentralWorker.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr int kListenQueue = 128;

}  // namespace

CentralServer::~CentralServer() {
    SetShutDownFlag(1);
    StopAccept();
    while (!CloseDoorIfIdle()) ::Sleep(10);
}

int CentralServer::start(unsigned long address, unsigned short port) {
    const int result = ConnectToPort(port, kListenQueue, AF_INET, address);
    if (result != UTE_SUCCESS) return result;
    SetPort(GetBoundPort());
    return StartAccept();
}

CUT_WSThread* CentralServer::CreateInstance() {
    return new (std::nothrow) CentralWorker(*this);
}

void CentralServer::ReleaseInstance(CUT_WSThread* worker) {
    delete worker;
}
