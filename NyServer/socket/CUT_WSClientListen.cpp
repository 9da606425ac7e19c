// Listening and datagrams.
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"

int CUT_WSClient::WaitForConnect(unsigned short port, int queueSize, short family,
                                 unsigned long address) {
    if (m_listenSocket != INVALID_SOCKET) return OnError(UTE_SOCK_ALREADY_OPEN);
    m_listenAddress = socketcalls::makeAddress(family, port, address);
    if (CreateSocket(m_listenSocket, family, SOCK_STREAM, m_protocol) == UTE_ERROR) {
        return OnError(UTE_SOCK_CREATE_FAILED);
    }
    if (!socketcalls::bindTo(m_listenSocket, m_listenAddress)) return OnError(UTE_SOCK_BIND_FAILED);
    if (::listen(m_listenSocket, queueSize) != 0) return OnError(UTE_SOCK_LISTEN_ERROR);
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
    int length = sizeof m_remoteAddress;
    m_socket = ::accept(m_listenSocket, reinterpret_cast<sockaddr*>(&m_remoteAddress), &length);
    if (m_socket == INVALID_SOCKET) return OnError(UTE_ERROR);
    setAddressText(socketcalls::dottedText(m_remoteAddress));
    fillPorts(::ntohs(m_remoteAddress.sin_port));
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
    const unsigned long own = localAddress ? ::inet_addr(localAddress) : INADDR_ANY;
    if (!socketcalls::bindTo(m_socket, socketcalls::makeAddress(m_family, localPort, own))) {
        dropSocket();
        return OnError(UTE_SOCK_BIND_FAILED);
    }
    fillPorts(remotePort);
    applyTimeOuts();
    return OnError(UTE_SUCCESS);
}

int CUT_WSClient::SendTo(const char* data, int& len) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    const sockaddr_in destination = socketcalls::makeAddress(
        m_family, static_cast<unsigned int>(m_remotePort), ::inet_addr(m_address));
    len = ::sendto(m_socket, data, len, 0, reinterpret_cast<const sockaddr*>(&destination),
                   sizeof destination);
    return OnError(len == SOCKET_ERROR ? UTE_SOCK_SEND_ERROR : UTE_SUCCESS);
}

int CUT_WSClient::ReceiveFrom(char* buffer, int& len, unsigned long timeOut) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    if (WaitForReceive(static_cast<long>(timeOut), 0) != UTE_SUCCESS) {
        return OnError(UTE_SOCK_TIMEOUT);
    }
    int senderLength = sizeof m_remoteAddress;
    len = ::recvfrom(m_socket, buffer, len, 0, reinterpret_cast<sockaddr*>(&m_remoteAddress),
                     &senderLength);
    return OnError(len == SOCKET_ERROR ? UTE_SOCK_RECEIVE_ERROR : UTE_SUCCESS);
}
