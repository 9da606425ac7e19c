#include "NyServer/host/NyFctIpUtil.h"

#include "NyServer/base/port/Port.h"
#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/host/MachineIdentity.h"

namespace {

// One start of the socket functions, balanced if it succeeded.
class SocketStart {
  public:
    SocketStart() {
        WSADATA data;
        m_isStarted = port::startSockets(data);
    }
    ~SocketStart() {
        if (m_isStarted) port::stopSockets();
    }
    SocketStart(const SocketStart&) = delete;
    SocketStart& operator=(const SocketStart&) = delete;

    explicit operator bool() const { return m_isStarted; }

  private:
    bool m_isStarted;
};

// REQUIRES: the socket functions are started.
CString firstAddressOf(const char* hostName) {
    in_addr address{};
    return port::lookUpAddress(hostName, address) ? CString(inet_ntoa(address)) : CString();
}

constexpr int kNameSize = 256;  // bytes of a host name, with the terminator

CString localAddress() {
    const SocketStart sockets;
    if (!sockets) return {};
    char name[kNameSize - 1];
    return port::localHostName(name, sizeof name) ? firstAddressOf(name) : CString();
}

CString addressOf(const CString& hostName) {
    char name[kNameSize] = "";
    if (hostName.CompareNoCase(_T("localhost")) == 0) {
        // Has no effect while the socket functions are not started.
        port::localHostName(name, sizeof name);
    } else if (!port::toSystemText(hostName.GetString(), name, sizeof name)) {
        return {};
    }
    const SocketStart sockets;
    return sockets ? firstAddressOf(name) : CString();
}

}  // namespace

CString NyFctIpUtil::_getIpAddress() {
    return NySe::resultOr(CString(), localAddress);
}

CString NyFctIpUtil::_getIpAddressFromHostName(const CString& hostName) {
    return NySe::resultOr(CString(), [&] { return addressOf(hostName); });
}

CString NyFctIpUtil::getStrMachineID() {
    // The result is not used; the query itself is visible to name services and must be made.
    NySe::resultOr(CString(), [] { return addressOf(CString(port::computerName().c_str())); });
    CString identity = NySe::resultOr(CString(), [] {
        return machineidentity::hardwareAddress(port::adapters(), _getIpAddress(), _T("-"));
    });
    if (!identity.IsEmpty()) return identity;
    return NySe::resultOr(CString(),
                          [] { return machineidentity::serialText(port::systemSerial()); });
}
