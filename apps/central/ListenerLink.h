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
    // that is. `sent`: how many bytes were taken in any case. REQUIRES: an open connection.
    Outcome send(const std::string& bytes, Patience patience, size_t& sent);

    // The first kHeard bytes at most that the other end has said on the present connection since
    // forgetHeard; what is behind them is lost. Closes the connection when the other end has.
    const std::string& hear();
    void forgetHeard() { m_heard.clear(); }
    static constexpr size_t kHeard = 4;

    bool isOpen() const { return m_socket.get() != INVALID_SOCKET; }
    // How many connections there have been, with the present one.
    unsigned long opened() const { return m_opened; }

  private:
    bool connectOnce(const Patience& patience);
    Outcome sendAll(const std::string& bytes, Patience& patience, size_t& sent);
    bool takeIn();

    const sockaddr_in m_address;
    NySe::UniqueSocket m_socket;
    std::string m_heard;
    unsigned long m_opened = 0;
};
