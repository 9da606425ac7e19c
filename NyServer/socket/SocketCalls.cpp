#include "NyServer/socket/SocketCalls.h"

#include <algorithm>
#include <cstring>

#include "NyServer/socket/SocketCodes.h"

namespace socketcalls {
namespace {

constexpr int kSendPiece = 255;
constexpr int kReceivePiece = 256;

// Returns the result that ends the transfer, or nothing to continue.
std::optional<int> receivePiece(CUT_DataSource& target, const ReceiveSteps& steps, long maxBytes,
                                long& total) {
    if (!steps.wait()) return UTE_SOCK_TIMEOUT;
    long piece = kReceivePiece;
    if (maxBytes > 0) {
        if (total >= maxBytes) return UTE_SUCCESS;
        piece = std::min(maxBytes - total, piece);
    }
    char buffer[kReceivePiece];
    const int count = steps.receive(buffer, static_cast<int>(piece));
    if (count == 0) return UTE_SUCCESS;
    if (count < 0) return UTE_SOCK_RECEIVE_ERROR;
    if (target.Write(buffer, static_cast<unsigned int>(count)) != count) return UTE_DS_WRITE_FAILED;
    addWrapping(total, count);
    if (!steps.mayGoOn(total)) return UTE_ABORTED;
    return std::nullopt;
}

}  // namespace

sockaddr_in makeAddress(int family, unsigned int port, unsigned long networkAddress) {
    sockaddr_in address{};
    address.sin_family = static_cast<decltype(address.sin_family)>(family);
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = static_cast<decltype(address.sin_addr.s_addr)>(networkAddress);
    return address;
}

int localPort(SOCKET socket) {
    return ntohs(port::localAddress(socket).sin_port);
}

const char* dottedText(const sockaddr_in& address) {
    const char* text = ::inet_ntoa(address.sin_addr);
    return text ? text : "";
}

const char* hostPart(const char* name) {
    for (std::size_t index = std::strlen(name); index > 1; --index) {
        if (name[index - 1] == '@') return name + index;
    }
    return name;
}

void copyText(const char* text, char* target, int size) {
    if (size < 1) return;
    const std::size_t length = std::min(std::strlen(text), static_cast<std::size_t>(size) - 1);
    std::memcpy(target, text, length);
    target[length] = '\0';
}

bool isReadable(SOCKET socket, long seconds, long microseconds) {
    return port::waitFor(socket, port::Wanted::readable, seconds, microseconds) == 1;
}

bool isWritable(SOCKET socket, long seconds, long microseconds) {
    return port::waitFor(socket, port::Wanted::writable, seconds, microseconds) == 1;
}

bool closeSocket(SOCKET socket, bool shutDown) {
    const bool isShutDown = !shutDown || port::shutDown(socket);
    const bool isClosed = port::closeSocket(socket);
    return isShutDown && isClosed;
}

int setTimeOut(SOCKET socket, int option, int milliseconds) {
    return port::setSocketOption(socket, option, &milliseconds, sizeof milliseconds);
}

bool setBlockingMode(SOCKET socket, int mode) {
    return port::setBlocking(socket, mode == 0);
}

bool isNoSocket(int error) {
    return error == WSAENOTSOCK || error == WSAENETDOWN || error == WSANOTINITIALISED;
}

PeekError classifyPeekError(int error) {
    switch (error) {
        case WSAEINTR:
        case WSAEFAULT:
        case WSAEINVAL:
        case WSAENOTSOCK:
        case WSAEMSGSIZE:
        case WSAEOPNOTSUPP:
        case WSAENETDOWN:
        case WSAENETRESET:
        case WSAECONNABORTED:
        case WSAEISCONN:
        case WSAESHUTDOWN:
        case WSAETIMEDOUT:
            return PeekError::dead;
        case WSAECONNRESET:
            return PeekError::reset;
        case WSAEINPROGRESS:
            return PeekError::inProgress;
        case WSAEWOULDBLOCK:
            return PeekError::wouldBlock;
        default:
            return PeekError::other;
    }
}

bool isConnected(SOCKET socket, const std::function<void(int)>& setMode) {
    const int ready = port::waitFor(socket, port::Wanted::readable, 0, 0);
    if (ready == SOCKET_ERROR && isNoSocket(port::lastSocketError())) return false;

    setMode(1);
    char byte = 0;
    int peeked = port::receive(socket, &byte, 1, MSG_PEEK);
    if (peeked == SOCKET_ERROR) {
        const PeekError error = classifyPeekError(port::lastSocketError());
        if (error == PeekError::dead) return false;
        if (error != PeekError::other) setMode(0);
        if (error == PeekError::reset) return false;
        if (error == PeekError::inProgress) return true;
        if (error == PeekError::wouldBlock) peeked = 0;
    }
    setMode(0);
    const bool peerClosed = peeked == 0 && ready == 1;
    return !peerClosed;
}

int receiveWithin(SOCKET socket, char* buffer, int length, int timeOut,
                  const std::function<int()>& wait) {
    if (timeOut > 0 && wait() != 0) return 0;
    return port::receive(socket, buffer, length, 0);
}

int sendFromSource(CUT_DataSource& source, const SendPiece& sendPiece) {
    if (source.Open(OM_READ) == -1) return UTE_DS_OPEN_FAILED;
    char buffer[kSendPiece + 1];
    int result = UTE_SUCCESS;
    for (int count = 0; (count = source.Read(buffer, kSendPiece)) > 0;) {
        if (const auto ended = sendPiece(buffer, count)) {
            result = *ended;
            break;
        }
    }
    source.Close();
    return result;
}

int receiveIntoSource(CUT_DataSource& target, OpenMsgType type, const ReceiveSteps& steps,
                      long maxBytes, long& total) {
    if (type != OM_WRITE && type != OM_APPEND) return UTE_INVALID_OPEN_TYPE;
    if (target.Open(type) == -1) return UTE_DS_OPEN_FAILED;
    std::optional<int> result;
    while (!(result = receivePiece(target, steps, maxBytes, total))) {
    }
    target.Close();
    return *result;
}

}  // namespace socketcalls
