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

    // What has come once it is `count` bytes or more; waits for it until nothing has come for
    // peers::kTimeOut.
    std::string waitFor(size_t count) {
        using Clock = std::chrono::steady_clock;
        size_t seen = 0;
        for (auto last = Clock::now(); Clock::now() < last + peers::kTimeOut; ::Sleep(5)) {
            const size_t now = size();
            if (now >= count) break;
            if (now > seen) last = Clock::now();
            seen = now;
        }
        return received();
    }

  private:
    static constexpr int kPiece = 256 * 1024;

    size_t size() {
        const std::lock_guard guard(m_lock);
        return m_received.size();
    }

    // The server closes the connection before this goes.
    void collect(peers::Connection& connection) {
        std::string piece(kPiece, 0);
        int count;
        while ((count = ::recv(connection.socket(), piece.data(), kPiece, 0)) > 0) {
            const std::lock_guard guard(m_lock);
            m_received.append(piece, 0, static_cast<size_t>(count));
        }
    }

    std::mutex m_lock;
    std::string m_received;
    peers::Peer m_peer{[this](peers::Connection& connection) { collect(connection); }};
};
