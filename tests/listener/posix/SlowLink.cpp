// slow_link listen COUNT: a listener on a free port, which it prints. Ends with 0
// once COUNT notifications have arrived as they were sent.
//
// slow_link send ADDRESS PORT COUNT: sends them as the central server does, and a probe. Ends with
// 0 when that is answered.
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "tests/listener/ListenerTest.h"

namespace {

int actionOf(int number) {
    return 50 + number % 9;
}

// Of different lengths, so that segments end everywhere in a header.
std::string payloadOf(int number) {
    return wireOf(number) +
           std::string(static_cast<size_t>(number) % 97, static_cast<char>(number));
}

int listen(int count) {
    ProbeListener listener;
    HostWindow window(&listener);
    window.attachTo(listener);
    if (!listener.start()) return 1;
    std::cout << listener.GetBoundPort() << std::endl;
    const auto isAllThere = [&] { return window.count() >= static_cast<size_t>(count); };
    eventually(isAllThere, std::chrono::seconds(45));
    int right = 0;
    for (const PostedMessage& message : window.messages())
        right += message.action() == actionOf(right) && message.payload() == payloadOf(right);
    std::cout << right << " of " << count << " arrived" << std::endl;
    window.detachFrom(listener);
    return right == count ? 0 : 1;
}

int send(const char* address, int port, int count) {
    const peers::WinsockSession winsock;
    NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    port::setNoDelay(socket.get());
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(static_cast<u_short>(port));
    to.sin_addr.s_addr = ::inet_addr(address);
    if (!port::connectTo(socket.get(), to)) return 1;
    peers::Connection listener(std::move(socket), peers::kNeverStopping);
    for (int i = 0; i < count; ++i) listener.send(frame(actionOf(i), payloadOf(i)));
    listener.send(kProbe);
    return listener.receive() == kAlive ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (arguments.size() == 2 && arguments[0] == "listen") return listen(std::atoi(argv[2]));
    if (arguments.size() == 4 && arguments[0] == "send")
        return send(argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    std::cerr << "usage: slow_link listen COUNT | send ADDRESS PORT COUNT" << std::endl;
    return 2;
}
