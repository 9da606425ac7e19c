// A user's listener that takes the frames it gets apart and answers probes as it is told to.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "NyServer/framing/NySeMemFile.h"
#include "tests/socket/Peers.h"

struct ReceivedFrame {
    LONG number = 0;
    std::string body;
};

// What a listener says to each probe; nothing for an empty text.
using ProbeAnswer = std::function<std::string()>;

inline std::string aliveAnswer() {
    const LONG alive = NySe::kAliveAnswer;
    return std::string(reinterpret_cast<const char*>(&alive), sizeof alive);
}

class FrameListener {
  public:
    explicit FrameListener(ProbeAnswer answer = &aliveAnswer) : m_answer(std::move(answer)) {}

    LONG port() const { return static_cast<LONG>(m_peer.port()); }
    int probes() const { return m_probes; }
    int connections() const { return m_connections; }
    // Ends the present connection at the next probe, in the place of an answer, so many times.
    void closeInstead(int times) { m_closes = times; }

    // All but the probes.
    std::vector<ReceivedFrame> frames() {
        const std::lock_guard guard(m_lock);
        return m_frames;
    }

  private:
    void serve(peers::Connection& connection) {
        ++m_connections;
        ReceivedFrame frame;
        while (receive(connection, frame)) {
            if (frame.number != NySe::actionIsAlive) {
                const std::lock_guard guard(m_lock);
                m_frames.push_back(frame);
                continue;
            }
            ++m_probes;
            if (m_closes > 0 && m_closes-- > 0) return;
            connection.send(m_answer());
        }
    }

    bool receive(peers::Connection& connection, ReceivedFrame& frame) {
        LONG header[2] = {};
        if (!take(connection, sizeof header)) return false;
        std::memcpy(header, m_pending.data(), sizeof header);
        m_pending.erase(0, sizeof header);
        if (!take(connection, static_cast<size_t>(header[1]))) return false;
        frame = {header[0], m_pending.substr(0, static_cast<size_t>(header[1]))};
        m_pending.erase(0, frame.body.size());
        return true;
    }

    // False at the end of the connection; otherwise so many bytes are pending.
    bool take(peers::Connection& connection, size_t count) {
        while (m_pending.size() < count) {
            const std::string piece = connection.receive();
            if (piece.empty()) {
                m_pending.clear();
                return false;
            }
            m_pending += piece;
        }
        return true;
    }

    const ProbeAnswer m_answer;
    std::atomic<int> m_probes = 0;
    std::atomic<int> m_connections = 0;
    std::atomic<int> m_closes = 0;
    std::mutex m_lock;
    std::vector<ReceivedFrame> m_frames;
    std::string m_pending;
    peers::Peer m_peer{[this](peers::Connection& connection) { serve(connection); }};
};
