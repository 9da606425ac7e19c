// Plain connections to this host, for tests that are the peer themselves.
#pragma once

#include <atomic>

#include "tests/socket/Peers.h"

namespace peers {

inline const std::atomic<bool> kNeverStopping = false;

// Of the socket's own end.
inline sockaddr_in addressOf(SOCKET socket) {
    sockaddr_in own{};
    int length = sizeof own;
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&own), &length);
    return own;
}

inline int optionOf(SOCKET socket, int option) {
    int value = -1;
    int length = sizeof value;
    ::getsockopt(socket, SOL_SOCKET, option, reinterpret_cast<char*>(&value), &length);
    return value;
}

// An invalid socket when nobody listens.
inline NySe::UniqueSocket connectTo(unsigned int port) {
    NySe::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in address = loopbackAddress(port);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        socket.reset();
    return socket;
}

inline Connection connectionTo(unsigned int port) {
    return {connectTo(port), kNeverStopping};
}

inline bool isReachable(unsigned int port) {
    return static_cast<bool>(connectTo(port));
}

// A port that was free a moment ago.
inline unsigned short freePort() {
    return static_cast<unsigned short>(portOf(bindToLoopback()));
}

// The two ends of one connection.
class SocketPair {
  public:
    SocketPair() {
        const NySe::UniqueSocket listener = bindToLoopback();
        ::listen(listener.get(), 1);
        m_near = connectTo(static_cast<unsigned int>(portOf(listener)));
        m_far.reset(::accept(listener.get(), nullptr, nullptr));
    }

    SOCKET nearEnd() const { return m_near.get(); }
    Connection takeFarEnd() { return {std::move(m_far), kNeverStopping}; }
    void closeNear() { m_near.reset(); }

  private:
    WinsockSession m_winsock;
    NySe::UniqueSocket m_near;
    NySe::UniqueSocket m_far;
};

}  // namespace peers
