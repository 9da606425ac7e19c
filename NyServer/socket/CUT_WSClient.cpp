#include "NyServer/socket/CUT_WSClient.h"

#include "NyServer/socket/SocketCalls.h"

CUT_WSClient::CUT_WSClient() {
    if (!port::startSockets(m_winsockData)) m_winsockStarted = 0;
    applyTimeOuts();
}

CUT_WSClient::~CUT_WSClient() {
    CUT_WSClient::CloseConnection();
    endLookUps();
    port::stopSockets();
    dropNotificationWindow();
}

int CUT_WSClient::OnError(int code) {
    return code;
}

int CUT_WSClient::IsAborted() {
    return 0;
}

int CUT_WSClient::SendFileStatus(long) {
    return IsAborted() == 0;
}

int CUT_WSClient::ReceiveFileStatus(long) {
    return IsAborted() == 0;
}

int CUT_WSClient::SetReceiveTimeOut(int ms) {
    const int result = socketcalls::setTimeOut(m_socket, SO_RCVTIMEO, ms);
    if (result == 0) m_receiveTimeOut = ms;
    return OnError(result);
}

int CUT_WSClient::SetSendTimeOut(int ms) {
    const int result = socketcalls::setTimeOut(m_socket, SO_SNDTIMEO, ms);
    if (result == 0) m_sendTimeOut = ms;
    return OnError(result);
}

void CUT_WSClient::applyTimeOuts() {
    SetReceiveTimeOut(m_receiveTimeOut);
    SetSendTimeOut(m_sendTimeOut);
}

int CUT_WSClient::SetMaxReceive(int bytes) {
    return port::setSocketOption(m_socket, SO_RCVBUF, &bytes, sizeof bytes);
}

int CUT_WSClient::SetMaxSend(int bytes) {
    return port::setSocketOption(m_socket, SO_SNDBUF, &bytes, sizeof bytes);
}

int CUT_WSClient::GetMaxReceive() {
    int bytes = 0;
    return GetSocketOption(SO_RCVBUF, &bytes) == 0 ? bytes : -1;
}

int CUT_WSClient::GetMaxSend() {
    int bytes = 0;
    return GetSocketOption(SO_SNDBUF, &bytes) == 0 ? bytes : -1;
}

int CUT_WSClient::GetSocketOption(int option, void* value) {
    return port::getSocketOption(m_socket, option, value, 4);
}

int CUT_WSClient::SetSocketOption(int option, void* value) {
    // Callers pass an 8-byte value for every option.
    return port::setSocketOption(m_socket, option, value, 8);
}

int CUT_WSClient::SetBlockingMode(int mode) {
    if (!socketcalls::setBlockingMode(m_socket, mode)) return OnError(UTE_ERROR);
    m_blockingMode = mode;
    return OnError(UTE_SUCCESS);
}
