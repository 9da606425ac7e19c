// Making, testing and closing the connection.
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"

int CUT_WSClient::CreateSocket(SOCKET& s, int family, int type, int protocol) {
    s = ::socket(family, type, protocol);
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
    m_remoteAddress = socketcalls::makeAddress(family, port, ::inet_addr(m_address));
    if (CreateSocket(m_socket, family, type, 0) == UTE_ERROR)
        return OnError(UTE_SOCK_CREATE_FAILED);
    if (timeOut >= 0) SetBlockingMode(1);
    return OnError(startConnect(timeOut));
}

// From the connect call on: the result of Connect.
int CUT_WSClient::startConnect(long timeOut) {
    const auto* address = reinterpret_cast<const sockaddr*>(&m_remoteAddress);
    if (::connect(m_socket, address, sizeof m_remoteAddress) == 0) {
        // The mode stays as it is and the ports are left alone: callers rely on both.
        applyTimeOuts();
        return UTE_SUCCESS;
    }
    if (::WSAGetLastError() != WSAEWOULDBLOCK) {
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
    fillPorts(::ntohs(m_remoteAddress.sin_port));
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
    const sockaddr_in local =
        socketcalls::makeAddress(family, localPort, ::inet_addr(localAddress));
    // On failure the socket stays: closing it is up to the caller.
    if (!socketcalls::bindTo(m_socket, local)) return OnError(UTE_SOCK_BIND_FAILED);
    m_remoteAddress = socketcalls::makeAddress(family, remotePort, ::inet_addr(remoteAddress));
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&m_remoteAddress),
                  sizeof m_remoteAddress) != 0) {
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
    ::WSACleanup();
    forgetConnection();
    return OnError(socketcalls::startWinsock(m_winsockData) ? UTE_SUCCESS : UTE_ERROR);
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
