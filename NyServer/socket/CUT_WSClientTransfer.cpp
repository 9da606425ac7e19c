// Waiting, and transfers of bytes, lines, datagrams, data sources and files.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "NyServer/socket/CUT_FileDataSource.h"
#include "NyServer/socket/CUT_WSClient.h"
#include "NyServer/socket/SocketCalls.h"

int CUT_WSClient::WaitForSend(long seconds, long microseconds) {
    const bool isReady = socketcalls::isWritable(m_socket, seconds, microseconds);
    return OnError(isReady ? UTE_SUCCESS : UTE_ERROR);
}

int CUT_WSClient::WaitForReceive(long seconds, long microseconds) {
    const bool isReady = socketcalls::isReadable(m_socket, seconds, microseconds);
    return OnError(isReady ? UTE_SUCCESS : UTE_ERROR);
}

bool CUT_WSClient::IsDataWaiting() {
    return port::waitingBytes(m_socket) > 0;
}

int CUT_WSClient::Send(const char* data, int len) {
    if (len < 1) len = static_cast<int>(std::strlen(data));
    const int sent = port::send(m_socket, data, len, 0);
    return sent == SOCKET_ERROR ? 0 : sent;
}

int CUT_WSClient::Receive(char* buffer, int len, int timeOut) {
    return socketcalls::receiveWithin(m_socket, buffer, len, timeOut,
                                      [this, timeOut] { return WaitForReceive(timeOut, 0); });
}

int CUT_WSClient::ClearReceiveBuffer() {
    char buffer[256];
    while (IsDataWaiting() && Receive(buffer, sizeof buffer, 0) > 0) {
    }
    return OnError(UTE_SUCCESS);
}

bool CUT_WSClient::mayGoOn(int status) {
    return status != 0 && IsAborted() == 0;
}

int CUT_WSClient::Send(CUT_DataSource& source) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    long total = 0;
    const auto sendPiece = [this, &total](const char* data, int length) -> std::optional<int> {
        if (Send(data, length) == 0) return UTE_SOCK_SEND_ERROR;
        socketcalls::addWrapping(total, length);
        if (!mayGoOn(SendFileStatus(total))) return UTE_ABORTED;
        return std::nullopt;
    };
    return OnError(socketcalls::sendFromSource(source, sendPiece));
}

int CUT_WSClient::Receive(CUT_DataSource& target, OpenMsgType type, int timeOut, long maxBytes) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    const socketcalls::ReceiveSteps steps{
        [this, timeOut] { return timeOut <= 0 || WaitForReceive(timeOut, 0) == UTE_SUCCESS; },
        [this](char* buffer, int length) { return Receive(buffer, length, 0); },
        [this](long bytesSoFar) { return mayGoOn(ReceiveFileStatus(bytesSoFar)); }};
    long total = 0;
    return OnError(socketcalls::receiveIntoSource(target, type, steps, maxBytes, total));
}

int CUT_WSClient::SendFile(const WCHAR* path) {
    CUT_FileDataSource source(path, socketcalls::kFileBuffer);
    return Send(source);
}

int CUT_WSClient::ReceiveToFile(const WCHAR* path, OpenMsgType type, int timeOut, long maxBytes) {
    CUT_FileDataSource target(path, socketcalls::kFileBuffer);
    return Receive(target, type, timeOut, maxBytes);
}

int CUT_WSClient::SendAsLine(const char* data, int len, int lineLen) {
    if (len < 0) len = static_cast<int>(std::strlen(data));
    if (len < 1 || lineLen < 1) return 0;
    int total = 0;
    for (int position = 0; IsAborted() == 0; position += lineLen) {
        const int sent = Send(data + position, std::min(len - position, lineLen));
        if (sent < 1) break;
        total += sent;
        if (Send("\r\n", -1) < 1 || len - position <= lineLen) break;
    }
    return total;
}

int CUT_WSClient::ReceiveLine(char* buffer, int maxLen, int timeOut) {
    int space = maxLen - 1;
    if (space < 1) return 0;
    const std::unique_ptr<char[]> peeked(new (std::nothrow) char[static_cast<std::size_t>(maxLen)]);
    if (!peeked) return 0;

    int stored = 0;
    while (space > 0 && IsAborted() == 0) {
        if (timeOut > 0 && WaitForReceive(timeOut, 0) != UTE_SUCCESS) break;
        const int count = port::receive(m_socket, peeked.get(), space, MSG_PEEK);
        if (count < 1) break;
        const char* lineFeed = std::find(peeked.get(), peeked.get() + count, '\n');
        const bool isLine = lineFeed != peeked.get() + count;
        const int wanted = isLine ? static_cast<int>(lineFeed - peeked.get()) + 1 : count;
        const int taken = port::receive(m_socket, buffer + stored, wanted, 0);
        if (taken < 1) break;
        stored += taken;
        space -= taken;
        buffer[stored] = '\0';
        if (isLine) break;
    }
    return stored;
}

int CUT_WSClient::SendTo(const char* data, int& len) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    const sockaddr_in destination = socketcalls::makeAddress(
        m_family, static_cast<unsigned int>(m_remotePort), inet_addr(m_address));
    len = port::sendTo(m_socket, data, len, destination);
    return OnError(len == SOCKET_ERROR ? UTE_SOCK_SEND_ERROR : UTE_SUCCESS);
}

int CUT_WSClient::ReceiveFrom(char* buffer, int& len, unsigned long timeOut) {
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    if (WaitForReceive(static_cast<long>(timeOut), 0) != UTE_SUCCESS) {
        return OnError(UTE_SOCK_TIMEOUT);
    }
    len = port::receiveFrom(m_socket, buffer, len, m_remoteAddress);
    return OnError(len == SOCKET_ERROR ? UTE_SOCK_RECEIVE_ERROR : UTE_SUCCESS);
}
