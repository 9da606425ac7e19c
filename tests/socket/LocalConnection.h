// Plain connections to this host, for tests that are the peer themselves.
#pragma once

#include <atomic>

#include "tests/socket/Peers.h"

namespace peers {

inline const std::atomic<bool> kNeverStopping = false;

inline int optionOf(SOCKET socket, int option) {
    int value = -1;
    port::getSocketOption(socket, option, &value, sizeof value);
    return value;
}

// An invalid socket when nobody listens.
inline NySe::UniqueSocket connectTo(unsigned int port) {
    NySe::UniqueSocket socket(port::createSocket(AF_INET, SOCK_STREAM, 0));
    if (!port::connectTo(socket.get(), loopbackAddress(port))) socket.reset();
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
        port::listenOn(listener.get(), 1);
        m_near = connectTo(static_cast<unsigned int>(portOf(listener)));
        sockaddr_in peer{};
        m_far.reset(port::acceptFrom(listener.get(), peer));
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
