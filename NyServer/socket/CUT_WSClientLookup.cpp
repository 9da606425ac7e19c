// Host names and addresses, looked up while the caller waits.
#include <cstring>

#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"

int CUT_WSClient::IsIPAddress(const char* text) {
    return ::inet_addr(text) != INADDR_NONE;
}

int CUT_WSClient::GetAddressFromName(const char* name, char* address, int maxLen) {
    const hostent* host = ::gethostbyname(socketcalls::hostPart(name));
    const char* text = host ? socketcalls::firstAddress(*host) : nullptr;
    return copyLookedUp(text, address, maxLen);
}

int CUT_WSClient::GetNameFromAddress(const char* address, char* name, int maxLen) {
    const unsigned long value = ::inet_addr(address);
    const hostent* host =
        ::gethostbyaddr(reinterpret_cast<const char*>(&value), sizeof value, AF_INET);
    return copyLookedUp(host ? host->h_name : nullptr, name, maxLen);
}

// The result of a look-up that found `text` (null: nothing).
int CUT_WSClient::copyLookedUp(const char* text, char* target, int maxLen) {
    if (!text) return OnError(UTE_NAME_LOOKUP_FAILED);
    const std::size_t size = std::strlen(text) + 1;
    if (maxLen < 0 || size > static_cast<std::size_t>(maxLen)) return OnError(UTE_BUFFER_TOO_SHORT);
    std::memcpy(target, text, size);
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::GetHostAddress(char* address, int maxLen, int useSocket) {
    if (useSocket == 0) {
        char name[256];
        if (::gethostname(name, sizeof name) == 0 &&
            GetAddressFromName(name, address, maxLen) == UTE_SUCCESS) {
            return OnError(UTE_SUCCESS);
        }
    }
    if (m_socket == INVALID_SOCKET) return OnError(UTE_ERROR);
    socketcalls::copyText(socketcalls::dottedText(socketcalls::localAddress(m_socket)), address,
                          maxLen);
    return OnError(UTE_SUCCESS);
}
