#pragma once

#include "NyServer/socket/SocketCalls.h"

// Another handle of the socket, which keeps it open past the close of the first and shows whether
// it was shut down.
inline NySe::UniqueSocket otherHandleOf(SOCKET socket) {
    WSAPROTOCOL_INFOW info{};
    ::WSADuplicateSocketW(socket, ::GetCurrentProcessId(), &info);
    return NySe::UniqueSocket(::WSASocketW(FROM_PROTOCOL_INFO, FROM_PROTOCOL_INFO,
                                           FROM_PROTOCOL_INFO, &info, 0, WSA_FLAG_OVERLAPPED));
}
