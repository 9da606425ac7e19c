#include "NyServer/base/port/Port.h"

#include <cstring>

namespace port {
namespace {

struct OneSocketSet : fd_set {
    explicit OneSocketSet(SOCKET socket) : fd_set{} {
        fd_count = 1;
        fd_array[0] = socket;
    }
};

const sockaddr* general(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

sockaddr* general(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

}  // namespace

bool startSockets(WSADATA& data) {
    return ::WSAStartup(MAKEWORD(2, 0), &data) == 0;
}

void stopSockets() {
    ::WSACleanup();
}

int lastSocketError() {
    return ::WSAGetLastError();
}

SOCKET createSocket(int family, int type, int protocol) {
    return ::socket(family, type, protocol);
}

bool shutDown(SOCKET socket) {
    return ::shutdown(socket, SD_BOTH) == 0;
}

bool finishSending(SOCKET socket) {
    return ::shutdown(socket, SD_SEND) == 0;
}

bool stopListening(SOCKET) {
    return false;
}

bool closeSocket(SOCKET socket) {
    return ::closesocket(socket) == 0;
}

bool bindSocket(SOCKET socket, const sockaddr_in& address) {
    return ::bind(socket, general(address), sizeof address) == 0;
}

bool listenOn(SOCKET socket, int queueSize) {
    return ::listen(socket, queueSize) == 0;
}

SOCKET acceptFrom(SOCKET listener, sockaddr_in& peer) {
    int length = sizeof peer;
    return ::accept(listener, general(peer), &length);
}

bool connectTo(SOCKET socket, const sockaddr_in& peer) {
    return ::connect(socket, general(peer), sizeof peer) == 0;
}

int send(SOCKET socket, const char* data, int length, int flags) {
    return ::send(socket, data, length, flags);
}

int receive(SOCKET socket, char* buffer, int length, int flags) {
    return ::recv(socket, buffer, length, flags);
}

int sendTo(SOCKET socket, const char* data, int length, const sockaddr_in& peer) {
    return ::sendto(socket, data, length, 0, general(peer), sizeof peer);
}

int receiveFrom(SOCKET socket, char* buffer, int length, sockaddr_in& peer) {
    int peerLength = sizeof peer;
    return ::recvfrom(socket, buffer, length, 0, general(peer), &peerLength);
}

int waitFor(SOCKET socket, Wanted wanted, long seconds, long microseconds) {
    OneSocketSet set(socket);
    timeval timeOut{seconds, microseconds};
    return wanted == Wanted::readable ? ::select(0, &set, nullptr, nullptr, &timeOut)
                                      : ::select(0, nullptr, &set, nullptr, &timeOut);
}

Readiness waitForConnect(SOCKET socket, long microseconds) {
    OneSocketSet writable(socket);
    OneSocketSet failed(socket);
    timeval timeOut{0, microseconds};
    if (::select(0, nullptr, &writable, &failed, &timeOut) == SOCKET_ERROR || failed.fd_count > 0)
        return Readiness::failed;
    return writable.fd_count > 0 ? Readiness::ready : Readiness::pending;
}

sockaddr_in localAddress(SOCKET socket) {
    sockaddr_in address{};
    int length = sizeof address;
    ::getsockname(socket, general(address), &length);
    return address;
}

sockaddr_in peerAddress(SOCKET socket) {
    sockaddr_in address{};
    int length = sizeof address;
    ::getpeername(socket, general(address), &length);
    return address;
}

int getSocketOption(SOCKET socket, int option, void* value, int length) {
    return ::getsockopt(socket, SOL_SOCKET, option, static_cast<char*>(value), &length);
}

int setSocketOption(SOCKET socket, int option, const void* value, int length) {
    return ::setsockopt(socket, SOL_SOCKET, option, static_cast<const char*>(value), length);
}

int setNoDelay(SOCKET socket) {
    const BOOL on = TRUE;
    return ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on),
                        sizeof on);
}

bool setBlocking(SOCKET socket, bool isBlocking) {
    u_long nonBlocking = isBlocking ? 0 : 1;
    return ::ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking) == 0;
}

unsigned long waitingBytes(SOCKET socket) {
    u_long bytes = 0;
    return ::ioctlsocket(socket, FIONREAD, &bytes) == 0 ? bytes : 0;
}

bool lookUpAddress(const char* name, in_addr& address) {
    const hostent* const host = ::gethostbyname(name);
    if (!host || host->h_addrtype != AF_INET || !host->h_addr_list[0]) return false;
    std::memcpy(&address, host->h_addr_list[0], sizeof address);
    return true;
}

LookUp lookUpName(in_addr address, char* name, int size) {
    const hostent* const host =
        ::gethostbyaddr(reinterpret_cast<const char*>(&address), sizeof address, AF_INET);
    if (!host || !host->h_name) return LookUp::notFound;
    const std::size_t length = std::strlen(host->h_name);
    if (size < 0 || length >= static_cast<std::size_t>(size)) return LookUp::tooLong;
    std::memcpy(name, host->h_name, length + 1);
    return LookUp::found;
}

bool localHostName(char* name, int size) {
    return ::gethostname(name, size) == 0;
}

}  // namespace port
