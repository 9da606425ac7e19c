#include "apps/nyctl/TryConnect.h"

#include "apps/common/SelfConnect.h"
#include "NyServer/base/detail/UniqueHandle.h"
#include "NyServer/socket/TimedConnect.h"

namespace apps::nyctl {

using namespace socketcalls;

namespace {

sockaddr_in addressOf(const std::string& dotted, int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = ::htons(static_cast<u_short>(port));
    address.sin_addr.s_addr = ::inet_addr(dotted.c_str());
    return address;
}

ConnectOutcome outcomeOf(int error) {
    return error == WSAECONNREFUSED ? ConnectOutcome::refused : ConnectOutcome::unreachable;
}

int pendingError(SOCKET socket) {
    int error = 0;
    int size = sizeof error;
    ::getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
    return error;
}

}  // namespace

ConnectOutcome tryConnect(const std::string& address, int port, std::chrono::seconds timeOut) {
    const NySe::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    u_long nonBlocking = 1;
    ::ioctlsocket(socket.get(), FIONBIO, &nonBlocking);
    if (startConnect(socket.get(), addressOf(address, port)) == Readiness::failed)
        return outcomeOf(::WSAGetLastError());
    const auto end = std::chrono::steady_clock::now() + timeOut;
    const Readiness readiness =
        awaitConnect(socket.get(), [end] { return std::chrono::steady_clock::now() >= end; });
    if (readiness == Readiness::pending) return ConnectOutcome::silent;
    if (const int error = pendingError(socket.get())) return outcomeOf(error);
    return readiness == Readiness::ready && !isConnectedToItself(socket.get())
               ? ConnectOutcome::connected
               : ConnectOutcome::refused;
}

}  // namespace apps::nyctl
