// Listeners that take the frames they get apart and answer probes as they are told to.
#pragma once

#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "NyServer/framing/NySeMemFile.h"
#include "tests/socket/Peers.h"

struct ReceivedFrame {
    LONG number = 0;
    std::string body;
};

// What a listener says to a probe; it closes the connection for want of anything.
using ProbeAnswer = std::function<std::optional<std::string>()>;

inline std::string aliveAnswer() {
    const LONG alive = NySe::kAliveAnswer;
    return std::string(reinterpret_cast<const char*>(&alive), sizeof alive);
}

// Serves one connection after the other. What it hands on are all frames but the probes.
class FrameScript {
  public:
    FrameScript(std::function<void(const ReceivedFrame&)> onFrame, ProbeAnswer answer)
        : m_onFrame(std::move(onFrame)), m_answer(std::move(answer)) {}

    int probes() const { return m_probes; }
    int connections() const { return m_connections; }

    void serve(peers::Connection& connection) {
        ++m_connections;
        m_pending.clear();
        ReceivedFrame frame;
        while (receive(connection, frame)) {
            if (frame.number != NySe::actionIsAlive) {
                m_onFrame(frame);
                continue;
            }
            const std::optional<std::string> answer = m_answer();
            if (answer) connection.send(*answer);
            ++m_probes;
            if (!answer) return;
        }
    }

  private:
    bool receive(peers::Connection& connection, ReceivedFrame& frame) {
        LONG header[2] = {};
        std::string bytes;
        if (!take(connection, sizeof header, bytes)) return false;
        std::memcpy(header, bytes.data(), sizeof header);
        frame.number = header[0];
        return take(connection, static_cast<size_t>(header[1]), frame.body);
    }

    // False at the end of the connection.
    bool take(peers::Connection& connection, size_t count, std::string& bytes) {
        while (m_pending.size() < count) {
            const std::string piece = connection.receive();
            if (piece.empty()) return false;
            m_pending += piece;
        }
        bytes = m_pending.substr(0, count);
        m_pending.erase(0, count);
        return true;
    }

    const std::function<void(const ReceivedFrame&)> m_onFrame;
    const ProbeAnswer m_answer;
    std::atomic<int> m_probes = 0;
    std::atomic<int> m_connections = 0;
    std::string m_pending;
};

// One listener, which keeps its frames.
class FrameListener {
  public:
    explicit FrameListener(ProbeAnswer answer = &aliveAnswer)
        : m_script([this](const ReceivedFrame& frame) { keep(frame); }, std::move(answer)) {}

    LONG port() const { return static_cast<LONG>(m_peer.port()); }
    int probes() const { return m_script.probes(); }
    int connections() const { return m_script.connections(); }

    std::vector<ReceivedFrame> frames() {
        const std::lock_guard guard(m_lock);
        return m_frames;
    }

  private:
    void keep(const ReceivedFrame& frame) {
        const std::lock_guard guard(m_lock);
        m_frames.push_back(frame);
    }

    std::mutex m_lock;
    std::vector<ReceivedFrame> m_frames;
    FrameScript m_script;
    peers::Peer m_peer{[this](peers::Connection& connection) { m_script.serve(connection); }};
};
