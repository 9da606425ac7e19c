#include "NyServer/host/NyFctIpUtil.h"

#include "NyServer/detail/ExceptionBoundary.h"
#include "NyServer/host/MachineIdentity.h"

namespace {

// One start of Windows Sockets, cleaned up if it succeeded.
class WinsockStart {
  public:
    WinsockStart() {
        WSADATA data;
        m_isStarted = ::WSAStartup(MAKEWORD(2, 0), &data) == 0;
    }
    ~WinsockStart() {
        if (m_isStarted) ::WSACleanup();
    }
    WinsockStart(const WinsockStart&) = delete;
    WinsockStart& operator=(const WinsockStart&) = delete;

    explicit operator bool() const { return m_isStarted; }

  private:
    bool m_isStarted;
};

// REQUIRES: Windows Sockets are started.
CString firstAddressOf(const char* hostName) {
    const hostent* host = ::gethostbyname(hostName);
    if (host == nullptr || host->h_addr_list[0] == nullptr) return {};
    in_addr address;
    memcpy(&address, host->h_addr_list[0], sizeof address);
    return CString(::inet_ntoa(address));
}

// A host name in the form that look-ups take.
struct HostName {
    static constexpr int kSize = 256;  // bytes, with the terminator

    // Returns false if it does not fit.
    bool convert(const CString& name) {
        return ::WideCharToMultiByte(CP_ACP, 0, name, -1, text, kSize, nullptr, nullptr) != 0;
    }

    // No effect while Windows Sockets are not started.
    void takeLocal() { ::gethostname(text, kSize); }

    char text[kSize] = "";
};

CString computerName() {
    wchar_t name[255] = L"";
    DWORD size = 255;
    ::GetComputerNameW(name, &size);
    return CString(name);
}

CString localAddress() {
    const WinsockStart winsock;
    if (!winsock) return {};
    char name[255];
    if (::gethostname(name, sizeof name) != 0) return {};
    return firstAddressOf(name);
}

CString addressOf(const CString& hostName) {
    HostName name;
    if (hostName.CompareNoCase(L"localhost") == 0) {
        name.takeLocal();
    } else if (!name.convert(hostName)) {
        return {};
    }
    const WinsockStart winsock;
    if (!winsock) return {};
    return firstAddressOf(name.text);
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
    NySe::resultOr(CString(), [] { return addressOf(computerName()); });
    CString identity = NySe::resultOr(CString(), [] {
        const auto adapters = machineidentity::readAdapters();
        return machineidentity::identityOf(adapters.data(), _getIpAddress(), L"C");
    });
    // This needs less memory than the adapters do.
    if (identity.IsEmpty())
        identity = NySe::resultOr(CString(), [] { return machineidentity::volumeSerial(L"C"); });
    return identity;
}
