// ListenerLink: the connection to one user's listener.
#pragma once

#include <atomic>
#include <chrono>
#include <string>

#include "NyServer/socket/SocketCalls.h"

// How long a step may go on: until a time, or until somebody asks for the end.
class Patience {
  public:
    Patience(std::chrono::milliseconds wait, const std::atomic<bool>& isEnding)
        : m_wait(wait), m_isEnding(isEnding) {
        startAgain();
    }
    void startAgain() { m_end = std::chrono::steady_clock::now() + m_wait; }
    bool isOver() const { return m_isEnding || std::chrono::steady_clock::now() >= m_end; }

  private:
    const std::chrono::milliseconds m_wait;
    std::chrono::steady_clock::time_point m_end;
    const std::atomic<bool>& m_isEnding;
};

// Used by one thread. It waits in short steps.
class ListenerLink {
  public:
    enum class Outcome { done, unreachable, lost, tooSlow };

    explicit ListenerLink(const sockaddr_in& address) : m_address(address) {}

    // Makes sure that there is a connection, trying again until `patience` is over. False when
    // there is none then.
    bool open(const Patience& patience);

    // All of the bytes: done. Otherwise the connection is closed; lost: by the other end, or
    // broken; tooSlow: no byte was taken until `patience` was over, which starts again with each
    // that is. REQUIRES: an open connection.
    Outcome send(const std::string& bytes, Patience patience);

  private:
    bool connectOnce(const Patience& patience);
    Outcome sendAll(const std::string& bytes, Patience& patience);
    bool hasBeenClosed() const;

    const sockaddr_in m_address;
    UniqueSocket m_socket;
};
