// Waiting, and moving bytes, data sources and files.
#include <cstring>

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
    return socketcalls::isDataWaiting(m_socket);
}

int CUT_WSClient::Send(const char* data, int len) {
    if (len < 1) len = static_cast<int>(std::strlen(data));
    const int sent = ::send(m_socket, data, len, 0);
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

int CUT_WSClient::SendFile(const wchar_t* path) {
    CUT_FileDataSource source(path, socketcalls::kFileBuffer);
    return Send(source);
}

int CUT_WSClient::ReceiveToFile(const wchar_t* path, OpenMsgType type, int timeOut, long maxBytes) {
    CUT_FileDataSource target(path, socketcalls::kFileBuffer);
    return Receive(target, type, timeOut, maxBytes);
}
