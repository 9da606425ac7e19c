#include "NyServer/listener/NyServerApp.h"

#include <new>

#include "NyServer/host/NyFctIpUtil.h"
#include "NyServer/listener/NyServerThreadApp.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

constexpr int kListenQueue = 5;
constexpr DWORD kTick = 50;  // milliseconds

}  // namespace

NyServerApp::NyServerApp() = default;

NyServerApp::~NyServerApp() {
    endConnections();
}

// Accepting ends first: peers that connect again and again would leave no idle moment.
void NyServerApp::endConnections() {
    SetShutDownFlag(1);
    StopAccept();
    while (!CloseDoorIfIdle()) ::Sleep(kTick);
}

int NyServerApp::Start() {
    if (IsAccepting()) return OnError(UTE_ERROR);
    const int result = ConnectToPort(m_portNumber, kListenQueue, AF_INET, ::htonl(INADDR_ANY));
    return result != UTE_SUCCESS ? result : StartAccept();
}

CUT_WSThread* NyServerApp::CreateInstance() {
    return new (std::nothrow) NyServerThreadApp(this);
}

void NyServerApp::ReleaseInstance(CUT_WSThread* worker) {
    delete worker;
}

CString NyServerApp::_getIpAdress() {
    return NyFctIpUtil::_getIpAddress();
}

CString NyServerApp::_getIpAdressByName(const CString& name) {
    return NyFctIpUtil::_getIpAddressFromHostName(name);
}
