#include "tests/socket/Peers.h"

#include <stdexcept>

namespace peers {
namespace {

using Clock = std::chrono::steady_clock;

constexpr long kTickMicroseconds = 10000;

bool isReadable(SOCKET socket) {
    return port::waitFor(socket, port::Wanted::readable, 0, kTickMicroseconds) == 1;
}

bool isWritable(SOCKET socket, long microseconds) {
    return port::waitFor(socket, port::Wanted::writable, 0, microseconds) == 1;
}

NySe::UniqueSocket listenOnLoopback(int queueSize) {
    NySe::UniqueSocket socket = bindToLoopback();
    if (!port::listenOn(socket.get(), queueSize)) throw std::runtime_error("cannot listen");
    return socket;
}

}  // namespace

WinsockSession::WinsockSession() {
    WSADATA data{};
    if (!port::startSockets(data)) throw std::runtime_error("the socket functions do not start");
}

WinsockSession::~WinsockSession() {
    port::stopSockets();
}

sockaddr_in loopbackAddress(unsigned int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

NySe::UniqueSocket bindToLoopback(int type) {
    NySe::UniqueSocket socket(port::createSocket(AF_INET, type, 0));
    if (!port::bindSocket(socket.get(), loopbackAddress(0))) {
        throw std::runtime_error("cannot bind to 127.0.0.1");
    }
    return socket;
}

int portOf(const NySe::UniqueSocket& socket) {
    return ntohs(port::localAddress(socket.get()).sin_port);
}

bool Connection::waitForData() {
    const auto deadline = Clock::now() + kTimeOut;
    while (m_socket && !m_isStopping && Clock::now() < deadline) {
        if (isReadable(m_socket.get())) return true;
    }
    return false;
}

void Connection::send(std::string_view data) {
    port::send(m_socket.get(), data.data(), static_cast<int>(data.size()), 0);
}

std::string Connection::receive() {
    if (!waitForData()) return {};
    char buffer[65536];
    const int count = port::receive(m_socket.get(), buffer, sizeof buffer, 0);
    return count > 0 ? std::string(buffer, static_cast<std::size_t>(count)) : std::string();
}

bool Connection::awaitClose() {
    char byte;
    return waitForData() && port::receive(m_socket.get(), &byte, sizeof byte, 0) <= 0;
}

std::string Connection::receiveAll() {
    std::string all;
    for (std::string piece; !(piece = receive()).empty();) all += piece;
    return all;
}

void Connection::finishSending() {
    port::finishSending(m_socket.get());
}

Peer::Peer(Script script)
    : m_listener(listenOnLoopback(5)), m_script(std::move(script)), m_thread([this] { run(); }) {}

Peer::~Peer() {
    m_isStopping = true;
    m_thread.join();
}

void Peer::run() {
    while (!m_isStopping) {
        if (!isReadable(m_listener.get())) continue;
        sockaddr_in peer{};
        Connection connection(NySe::UniqueSocket(port::acceptFrom(m_listener.get(), peer)),
                              m_isStopping);
        m_script(connection);
        connection.close();
        ++m_served;
    }
}

int Peer::waitForServed(int count) {
    const auto deadline = Clock::now() + kTimeOut;
    while (m_served < count && Clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return m_served;
}

Script echo() {
    return [](Connection& peer) {
        for (std::string piece; !(piece = peer.receive()).empty();) peer.send(piece);
    };
}

Script silent() {
    return sending("");
}

Script sending(std::string data) {
    return [data](Connection& peer) {
        peer.send(data);
        peer.receiveAll();
    };
}

Script sendingAndClosing(std::string data) {
    return [data](Connection& peer) { peer.send(data); };
}

Script sendingPieces(std::vector<std::string> pieces, int pauseMs) {
    return [pieces, pauseMs](Connection& peer) {
        for (const std::string& piece : pieces) {
            peer.send(piece);
            std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs));
        }
        peer.receiveAll();
    };
}

ResettingPort::ResettingPort() : m_listener(listenOnLoopback(5)) {}

std::vector<NySe::UniqueSocket> connectWhileAnswered(unsigned int port, size_t most) {
    const sockaddr_in address = loopbackAddress(port);
    std::vector<NySe::UniqueSocket> answered;
    while (answered.size() < most) {
        NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
        port::setBlocking(socket.get(), false);
        port::connectTo(socket.get(), address);
        if (!isWritable(socket.get(), 500000)) break;
        answered.push_back(std::move(socket));
    }
    return answered;
}

UnansweringPort::UnansweringPort() {
    constexpr size_t kMost = 16;
    port::listenOn(m_listener.get(), 0);
    m_queued = connectWhileAnswered(port(), kMost);
    if (m_queued.size() == kMost) throw std::runtime_error("the listener's queue does not fill");
}

}  // namespace peers
