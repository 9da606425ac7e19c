// Host names, and sockets from their creation to their close.
#include <cstring>

#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/TimedConnect.h"

int CUT_WSClient::IsIPAddress(const char* text) {
    return inet_addr(text) != INADDR_NONE;
}

int CUT_WSClient::GetAddressFromName(const char* name, char* address, int maxLen) {
    in_addr found{};
    if (!port::lookUpAddress(socketcalls::hostPart(name), found))
        return OnError(UTE_NAME_LOOKUP_FAILED);
    const char* const text = inet_ntoa(found);
    const std::size_t size = std::strlen(text) + 1;
    if (maxLen < 0 || size > static_cast<std::size_t>(maxLen)) return OnError(UTE_BUFFER_TOO_SHORT);
    std::memcpy(address, text, size);
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::GetNameFromAddress(const char* address, char* name, int maxLen) {
    in_addr wanted{};
    wanted.s_addr = inet_addr(address);
    switch (port::lookUpName(wanted, name, maxLen)) {
        case port::LookUp::found:
            return OnError(UTE_SUCCESS);
        case port::LookUp::notFound:
            return OnError(UTE_NAME_LOOKUP_FAILED);
        case port::LookUp::tooLong:
            break;
    }
    return OnError(UTE_BUFFER_TOO_SHORT);
}

int CUT_WSClient::GetHostAddress(char* address, int maxLen, int useSocket) {
    if (useSocket == 0) {
        char name[256];
        if (port::localHostName(name, sizeof name) &&
            GetAddressFromName(name, address, maxLen) == UTE_SUCCESS) {
            return OnError(UTE_SUCCESS);
        }
    }
    if (m_socket == INVALID_SOCKET) return OnError(UTE_ERROR);
    socketcalls::copyText(socketcalls::dottedText(port::localAddress(m_socket)), address, maxLen);
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::CreateSocket(SOCKET& s, int family, int type, int protocol) {
    s = port::createSocket(family, type, protocol);
    return OnError(s == INVALID_SOCKET ? UTE_ERROR : UTE_SUCCESS);
}

int CUT_WSClient::Connect(unsigned int port, const char* address, long timeOut, int family,
                          int type) {
    if (m_socket != INVALID_SOCKET) return OnError(UTE_SOCK_ALREADY_OPEN);
    if (IsIPAddress(address) == 1) {
        setAddressText(address);
    } else if (GetAddressFromName(address, m_address, sizeof m_address) != UTE_SUCCESS) {
        return OnError(UTE_CONNECT_RESOLVE_FAILED);
    }
    m_socketType = type;
    m_family = family;
    m_remoteAddress = socketcalls::makeAddress(family, port, inet_addr(m_address));
    if (CreateSocket(m_socket, family, type, 0) == UTE_ERROR)
        return OnError(UTE_SOCK_CREATE_FAILED);
    if (timeOut >= 0) SetBlockingMode(1);
    return OnError(startConnect(timeOut));
}

// Connects the socket and returns the result of Connect.
int CUT_WSClient::startConnect(long timeOut) {
    const auto result = socketcalls::startConnect(m_socket, m_remoteAddress);
    if (result == port::Readiness::ready) {
        // Callers rely on the mode and the ports not being changed.
        applyTimeOuts();
        return UTE_SUCCESS;
    }
    if (result == port::Readiness::failed) {
        dropSocket();
        return UTE_SOCK_CONNECT_FAILED;
    }
    return finishConnect(timeOut);
}

int CUT_WSClient::finishConnect(long timeOut) {
    if (timeOut >= 0) {
        if (WaitForSend(timeOut, 0) != UTE_SUCCESS) {
            dropSocket();
            return UTE_CONNECT_TIMEOUT;
        }
        SetBlockingMode(0);
    }
    applyTimeOuts();
    fillPorts(ntohs(m_remoteAddress.sin_port));
    return UTE_SUCCESS;
}

int CUT_WSClient::ConnectBound(unsigned int localPort, unsigned int remotePort, char* localAddress,
                               char* remoteAddress, int family, int type) {
    if (m_socket != INVALID_SOCKET) return OnError(UTE_SOCK_ALREADY_OPEN);
    setAddressText(remoteAddress);
    m_family = family;
    m_socketType = type;
    if (CreateSocket(m_socket, family, type, 0) == UTE_ERROR)
        return OnError(UTE_SOCK_CREATE_FAILED);
    const sockaddr_in local = socketcalls::makeAddress(family, localPort, inet_addr(localAddress));
    // On failure the socket stays open until the caller closes it.
    if (!port::bindSocket(m_socket, local)) return OnError(UTE_SOCK_BIND_FAILED);
    m_remoteAddress = socketcalls::makeAddress(family, remotePort, inet_addr(remoteAddress));
    if (socketcalls::startConnect(m_socket, m_remoteAddress) != port::Readiness::ready) {
        return OnError(UTE_SOCK_CONNECT_FAILED);
    }
    fillPorts(remotePort);
    applyTimeOuts();
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::IsConnected() {
    return socketcalls::isConnected(m_socket, [this](int mode) { SetBlockingMode(mode); });
}

int CUT_WSClient::CloseConnection() {
    bool isClean = true;
    if (m_socket != INVALID_SOCKET) {
        isClean = socketcalls::closeSocket(m_socket, m_socketType == SOCK_STREAM);
    }
    if (m_listenSocket != INVALID_SOCKET) {
        isClean = socketcalls::closeSocket(m_listenSocket) && isClean;
    }
    forgetConnection();
    return OnError(isClean ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::Reset() {
    port::stopSockets();
    forgetConnection();
    return OnError(port::startSockets(m_winsockData) ? UTE_SUCCESS : UTE_ERROR);
}

void CUT_WSClient::forgetConnection() {
    m_socket = INVALID_SOCKET;
    m_listenSocket = INVALID_SOCKET;
    m_remotePort = 0;
    m_localPort = 0;
    m_acceptPort = 0;
    m_address[0] = '\0';
}

void CUT_WSClient::dropSocket() {
    socketcalls::closeSocket(m_socket, false);
    m_socket = INVALID_SOCKET;
}

void CUT_WSClient::fillPorts(unsigned int remotePort) {
    m_remotePort = static_cast<int>(remotePort);
    m_localPort = socketcalls::localPort(m_socket);
}

void CUT_WSClient::setAddressText(const char* text) {
    socketcalls::copyText(text, m_address, sizeof m_address);
}

int CUT_WSClient::WaitForConnect(unsigned short port, int queueSize, short family,
                                 unsigned long address) {
    if (m_listenSocket != INVALID_SOCKET) return OnError(UTE_SOCK_ALREADY_OPEN);
    m_listenAddress = socketcalls::makeAddress(family, port, address);
    if (CreateSocket(m_listenSocket, family, SOCK_STREAM, m_protocol) == UTE_ERROR) {
        return OnError(UTE_SOCK_CREATE_FAILED);
    }
    if (!port::bindSocket(m_listenSocket, m_listenAddress)) return OnError(UTE_SOCK_BIND_FAILED);
    if (!port::listenOn(m_listenSocket, queueSize)) return OnError(UTE_SOCK_LISTEN_ERROR);
    applyTimeOuts();
    m_acceptPort = socketcalls::localPort(m_listenSocket);
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::WaitForAccept(long seconds) {
    const bool isReady = socketcalls::isReadable(m_listenSocket, seconds, 0);
    return OnError(isReady ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::AcceptConnection() {
    if (m_socket != INVALID_SOCKET) {
        const bool isClean = socketcalls::closeSocket(m_socket, m_socketType == SOCK_STREAM);
        m_socket = INVALID_SOCKET;
        if (!isClean) return OnError(UTE_ERROR);
    }
    m_socket = port::acceptFrom(m_listenSocket, m_remoteAddress);
    if (m_socket == INVALID_SOCKET) return OnError(UTE_ERROR);
    setAddressText(socketcalls::dottedText(m_remoteAddress));
    fillPorts(ntohs(m_remoteAddress.sin_port));
    applyTimeOuts();
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::CreateUDPSocket(unsigned int localPort, unsigned int remotePort,
                                  char* remoteAddress, char* localAddress) {
    if (m_socket != INVALID_SOCKET) return OnError(UTE_SOCK_ALREADY_OPEN);
    setAddressText(remoteAddress);
    m_family = AF_INET;
    m_socketType = SOCK_DGRAM;
    if (CreateSocket(m_socket, m_family, m_socketType, 0) == UTE_ERROR) {
        return OnError(UTE_SOCK_CREATE_FAILED);
    }
    const unsigned long own = localAddress ? inet_addr(localAddress) : INADDR_ANY;
    if (!port::bindSocket(m_socket, socketcalls::makeAddress(m_family, localPort, own))) {
        dropSocket();
        return OnError(UTE_SOCK_BIND_FAILED);
    }
    fillPorts(remotePort);
    applyTimeOuts();
    return OnError(UTE_SUCCESS);
}
