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
        : m_end(std::chrono::steady_clock::now() + wait), m_isEnding(isEnding) {}
    bool isOver() const { return m_isEnding || std::chrono::steady_clock::now() >= m_end; }

  private:
    std::chrono::steady_clock::time_point m_end;
    const std::atomic<bool>& m_isEnding;
};

// Used by one thread. It waits in short steps.
class ListenerLink {
  public:
    explicit ListenerLink(const sockaddr_in& address) : m_address(address) {}

    // Makes sure that there is a connection, trying again until `patience` is over. False when
    // there is none then.
    bool open(const Patience& patience);

    // All of the bytes. False, with the connection closed, when they could not be sent until
    // `patience` was over. REQUIRES: an open connection.
    bool send(const std::string& bytes, const Patience& patience);

  private:
    bool connectOnce(const Patience& patience);
    bool hasBeenClosed() const;

    const sockaddr_in m_address;
    UniqueSocket m_socket;
};
