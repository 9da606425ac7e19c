#include "apps/nyctl/TryConnect.h"

#include "apps/common/SelfConnect.h"
#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/TimedConnect.h"

namespace apps::nyctl {

using port::Readiness;
using namespace socketcalls;

namespace {

sockaddr_in addressOf(const std::string& dotted, int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = ::inet_addr(dotted.c_str());
    return address;
}

ConnectOutcome outcomeOf(int error) {
    return error == WSAECONNREFUSED ? ConnectOutcome::refused : ConnectOutcome::unreachable;
}

int pendingError(SOCKET socket) {
    int error = 0;
    port::getSocketOption(socket, SO_ERROR, &error, sizeof error);
    return error;
}

}  // namespace

ConnectOutcome tryConnect(const std::string& address, int portNumber,
                          std::chrono::seconds timeOut) {
    using Clock = std::chrono::steady_clock;
    const NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    port::setBlocking(socket.get(), false);
    if (startConnect(socket.get(), addressOf(address, portNumber)) == Readiness::failed)
        return outcomeOf(port::lastSocketError());
    const auto end = Clock::now() + timeOut;
    const Readiness readiness = awaitConnect(socket.get(), [end] { return Clock::now() >= end; });
    if (readiness == Readiness::pending) return ConnectOutcome::silent;
    if (const int error = pendingError(socket.get())) return outcomeOf(error);
    return readiness == Readiness::ready && !isConnectedToItself(socket.get())
               ? ConnectOutcome::connected
               : ConnectOutcome::refused;
}

}  // namespace apps::nyctl
