// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/CUT_WSThread.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "NyServer/socket/CUT_FileDataSource.h"
#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/SocketCodes.h"

namespace {

// Returns the index of a carriage return that a line feed follows, or -1. For the last byte, the
// byte after it is read, unless that is outside `space`.
int findLineEnd(const char* bytes, int length, int space) {
    for (int i = 0; i < length && i + 1 < space; ++i)
        if (bytes[i] == '\r' && bytes[i + 1] == '\n') return i;
    return -1;
}

}  // namespace

CUT_WSThread::CUT_WSThread() {
    SetSendTimeOut(socketcalls::kTimeOut);
    SetReceiveTimeOut(socketcalls::kTimeOut);
}

CUT_WSThread::~CUT_WSThread() = default;

int CUT_WSThread::Send(const char* data, int len, int flags) {
    if (len < 0) len = static_cast<int>(std::strlen(data));
    return port::send(m_socket, data, len, flags);
}

int CUT_WSThread::Send(CUT_DataSource& source, long& bytesSent) {
    bytesSent = 0;
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    auto sendPiece = [&](const char* data, int length) -> std::optional<int> {
        if (Send(data, length, 0) == SOCKET_ERROR) return UTE_WORKER_SEND_FAILED;
        socketcalls::addWrapping(bytesSent, length);
        if (SendFileStatus(bytesSent) == 0) return UTE_SUCCESS;
        return std::nullopt;
    };
    return OnError(socketcalls::sendFromSource(source, sendPiece));
}

int CUT_WSThread::SendAsLine(char* data, int len, int lineLen) {
    if (len < 1) len = static_cast<int>(std::strlen(data));
    if (lineLen < 1) return 0;
    return NySe::zeroIfOutOfMemory([&] {
        int total = 0;
        while (len > 0) {
            const int length = std::min(len, lineLen);
            std::string line(data, strnlen(data, static_cast<size_t>(length)));
            line += "\r\n";
            const int sent = Send(line.c_str(), -1, 0);
            if (sent < 1) return sent;
            socketcalls::addWrapping(total, sent);
            data += length;
            len -= length;
        }
        return total;
    });
}

int CUT_WSThread::SendFile(const WCHAR* path, long& bytesSent) {
    CUT_FileDataSource source(path, socketcalls::kFileBuffer);
    return Send(source, bytesSent);
}

int CUT_WSThread::Receive(char* buffer, int len, int timeOut) {
    return socketcalls::receiveWithin(m_socket, buffer, len, timeOut,
                                      [&] { return WaitForReceive(timeOut, 0); });
}

int CUT_WSThread::Receive(CUT_DataSource& target, long& bytesReceived, OpenMsgType type,
                          int timeOut) {
    bytesReceived = 0;
    if (m_socket == INVALID_SOCKET) return OnError(UTE_SOCK_NOT_OPEN);
    const socketcalls::ReceiveSteps steps{
        [&] { return timeOut <= 0 || WaitForReceive(timeOut, 0) == UTE_SUCCESS; },
        [&](char* buffer, int length) { return Receive(buffer, length, 0); },
        [&](long bytesSoFar) { return ReceiveFileStatus(bytesSoFar) != 0; },
    };
    return OnError(socketcalls::receiveIntoSource(target, type, steps, 0, bytesReceived));
}

int CUT_WSThread::ReceiveToFile(const WCHAR* path, OpenMsgType type, long& bytesReceived,
                                int timeOut) {
    CUT_FileDataSource target(path, socketcalls::kFileBuffer);
    return Receive(target, bytesReceived, type, timeOut);
}

int CUT_WSThread::ReceiveLine(char* buffer, int maxLen, int timeOut) {
    int stored = 0;
    for (int space = maxLen - 1; space > 0 && !m_abort.load(std::memory_order_relaxed);
         space = maxLen - 1 - stored) {
        if (timeOut > 0 && WaitForReceive(timeOut, 0) != UTE_SUCCESS) break;
        char* part = buffer + stored;
        const int peeked = port::receive(m_socket, part, space, MSG_PEEK);
        if (peeked < 1) break;
        const int lineEnd = findLineEnd(part, peeked, space);
        const int received = port::receive(m_socket, part, lineEnd < 0 ? peeked : lineEnd + 2, 0);
        if (lineEnd >= 0) {
            part[lineEnd + 2] = '\0';
            return stored + lineEnd + 2;
        }
        if (received < 1) break;
        stored += received;
        buffer[stored] = '\0';
    }
    return stored;
}

void CUT_WSThread::OnConnect() {
    char line[100];
    if (ReceiveLine(line, sizeof line, 0) <= 0) return;
    ClearReceiveBuffer();
    Send("Connect Successful ... Now Disconnecting.", -1, 0);
}

void CUT_WSThread::OnMaxConnect() {
    char buffer[256];
    // The length is 0 on purpose: the peer of a refused connection gets no answer.
    if (Receive(buffer, sizeof buffer, 0) > 0)
        Send("Too Many Connections, Please Try Later.", 0, 0);
}

void CUT_WSThread::OnReserved() {}

int CUT_WSThread::ReceiveFileStatus(long) {
    return 1;
}

int CUT_WSThread::SendFileStatus(long) {
    return 1;
}

int CUT_WSThread::OnError(int code) {
    return code;
}

int CUT_WSThread::IsConnected() {
    return socketcalls::isConnected(m_socket, [this](int mode) { SetBlockingMode(mode); });
}

int CUT_WSThread::IsDataWaiting() {
    return port::waitingBytes(m_socket) > 0;
}

int CUT_WSThread::ClearReceiveBuffer() {
    char buffer[256];
    while (IsDataWaiting() && Receive(buffer, sizeof buffer, 0) > 0) {
    }
    return UTE_SUCCESS;
}

int CUT_WSThread::WaitForReceive(long seconds, long microseconds) {
    return OnError(socketcalls::isReadable(m_socket, seconds, microseconds) ? UTE_SUCCESS
                                                                            : UTE_ERROR);
}

void CUT_WSThread::SetBlockingMode(int mode) {
    if (socketcalls::setBlockingMode(m_socket, mode))
        m_blockingMode = static_cast<unsigned char>(mode);
}

void CUT_WSThread::SetReceiveTimeOut(long milliseconds) {
    if (socketcalls::setTimeOut(m_socket, SO_RCVTIMEO, static_cast<int>(milliseconds)) == 0)
        m_receiveTimeOut = milliseconds;
}

void CUT_WSThread::SetSendTimeOut(long milliseconds) {
    if (socketcalls::setTimeOut(m_socket, SO_SNDTIMEO, static_cast<int>(milliseconds)) == 0)
        m_sendTimeOut = milliseconds;
}
