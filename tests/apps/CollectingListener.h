// A user's listener that keeps what it is told.
#pragma once

#include <mutex>
#include <string>

#include "tests/socket/Peers.h"

class CollectingListener {
  public:
    LONG port() const { return static_cast<LONG>(m_peer.port()); }

    std::string received() {
        const std::lock_guard guard(m_lock);
        return m_received;
    }

    // What has come once it is `count` bytes or more; waits for it at most peers::kPatience.
    std::string waitFor(size_t count) {
        const auto deadline = std::chrono::steady_clock::now() + peers::kPatience;
        while (received().size() < count && std::chrono::steady_clock::now() < deadline) ::Sleep(5);
        return received();
    }

  private:
    void collect(peers::Connection& connection) {
        for (std::string piece; !(piece = connection.receive()).empty();) {
            const std::lock_guard guard(m_lock);
            m_received += piece;
        }
    }

    std::mutex m_lock;
    std::string m_received;
    peers::Peer m_peer{[this](peers::Connection& connection) { collect(connection); }};
};
