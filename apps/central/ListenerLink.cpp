#include "apps/central/ListenerLink.h"

#include <algorithm>

namespace {

constexpr timeval kStep{0, 100'000};
constexpr DWORD kPauseBetweenConnectsMs = 200;

fd_set only(SOCKET socket) {
    fd_set set{};
    FD_SET(socket, &set);
    return set;
}

enum class Readiness { notYet, ready, failed };

// Whether the socket takes bytes, or a connect has ended one way or the other.
Readiness waitWritable(SOCKET socket, timeval wait) {
    fd_set writable = only(socket);
    fd_set failed = only(socket);
    if (::select(0, nullptr, &writable, &failed, &wait) == SOCKET_ERROR || failed.fd_count > 0)
        return Readiness::failed;
    return writable.fd_count > 0 ? Readiness::ready : Readiness::notYet;
}

UniqueSocket makeSocket() {
    UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    u_long nonBlocking = 1;
    ::ioctlsocket(socket.get(), FIONBIO, &nonBlocking);
    const BOOL on = TRUE;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on),
                 sizeof on);
    return socket;
}

bool isWouldBlock() {
    return ::WSAGetLastError() == WSAEWOULDBLOCK;
}

}  // namespace

bool ListenerLink::open(const Patience& patience) {
    if (m_socket && hasBeenClosed()) m_socket.reset();
    while (!m_socket) {
        if (connectOnce(patience)) return true;
        if (patience.isOver()) return false;
        ::Sleep(kPauseBetweenConnectsMs);
    }
    return true;
}

bool ListenerLink::connectOnce(const Patience& patience) {
    UniqueSocket socket = makeSocket();
    const auto* address = reinterpret_cast<const sockaddr*>(&m_address);
    if (::connect(socket.get(), address, sizeof m_address) != 0 && !isWouldBlock()) return false;
    Readiness readiness = Readiness::notYet;
    while (readiness == Readiness::notYet && !patience.isOver())
        readiness = waitWritable(socket.get(), kStep);
    if (readiness != Readiness::ready) return false;
    m_socket = std::move(socket);
    return true;
}

// A listener sends nothing unless it is asked: what makes the socket readable is its end.
bool ListenerLink::hasBeenClosed() const {
    fd_set readable = only(m_socket.get());
    timeval noWait{0, 0};
    return ::select(0, &readable, nullptr, nullptr, &noWait) != 0;
}

bool ListenerLink::send(const std::string& bytes, const Patience& patience) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        const int count =
            ::send(m_socket.get(), bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count > 0) {
            sent += static_cast<size_t>(count);
        } else if (!isWouldBlock() || patience.isOver() ||
                   waitWritable(m_socket.get(), kStep) == Readiness::failed) {
            m_socket.reset();
            return false;
        }
    }
    return true;
}
