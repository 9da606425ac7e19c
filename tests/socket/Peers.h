// Real peers for socket tests. Each listens on a free port of 127.0.0.1, serves one connection at a
// time on a thread of its own and is stopped and joined by its destructor; no wait in it is longer
// than kTimeOut.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "NyServer/socket/SocketCalls.h"

namespace peers {

inline constexpr std::chrono::seconds kTimeOut{30};

// One start of Winsock.
class WinsockSession {
  public:
    WinsockSession();
    ~WinsockSession();
    WinsockSession(const WinsockSession&) = delete;
    WinsockSession& operator=(const WinsockSession&) = delete;
};

sockaddr_in loopbackAddress(unsigned int port);

// A stream or datagram socket bound to a free port of 127.0.0.1.
NySe::UniqueSocket bindToLoopback(int type = SOCK_STREAM);
int portOf(const NySe::UniqueSocket& socket);

// The peer's end of a connection. Waits end early when the peer is being stopped.
class Connection {
  public:
    Connection(NySe::UniqueSocket socket, const std::atomic<bool>& isStopping)
        : m_socket(std::move(socket)), m_isStopping(isStopping) {}

    SOCKET socket() const { return m_socket.get(); }
    void send(std::string_view data);

    // What the next recv brings; empty at a close, an error, a stop or after kTimeOut.
    std::string receive();

    // Whether this end sees the other one close, or reset, the connection within kTimeOut, with no
    // data before that.
    bool awaitClose();

    // All up to the first empty receive.
    std::string receiveAll();

    void finishSending();

    void close() { m_socket.reset(); }

  private:
    bool waitForData();

    NySe::UniqueSocket m_socket;
    const std::atomic<bool>& m_isStopping;
};

using Script = std::function<void(Connection&)>;

// Runs `script` for each accepted connection and closes it when the script returns. What a script
// refers to must be declared before the peer.
class Peer {
  public:
    explicit Peer(Script script);
    ~Peer();

    unsigned int port() const { return static_cast<unsigned int>(portOf(m_listener)); }

    // Waits until `count` scripts have returned, at most kTimeOut. How many have.
    int waitForServed(int count);

  private:
    void run();

    WinsockSession m_winsock;
    NySe::UniqueSocket m_listener;
    Script m_script;
    std::atomic<bool> m_isStopping = false;
    std::atomic<int> m_served = 0;
    std::thread m_thread;
};

// Scripts.
Script echo();                                    // sends back what comes
Script silent();                                  // reads, never answers, until the client closes
Script sending(std::string data);                 // sends, then as silent
Script sendingAndClosing(std::string data = "");  // sends and closes
Script sendingPieces(std::vector<std::string> pieces,
                     int pauseMs);  // a pause between pieces, then as silent

// A port that nobody listens on, kept from others.
class RefusingPort {
  public:
    unsigned int port() const { return static_cast<unsigned int>(portOf(m_socket)); }

  private:
    WinsockSession m_winsock;
    NySe::UniqueSocket m_socket = bindToLoopback();
};

// A listener that never accepts. Its queued connections are reset when it closes: the one way to a
// reset that does not depend on how a stack ends an accepted connection (lingering for no time is
// an orderly end in some).
class ResettingPort {
  public:
    ResettingPort();
    unsigned int port() const { return static_cast<unsigned int>(portOf(m_listener)); }
    void resetConnections() { m_listener.reset(); }

  private:
    WinsockSession m_winsock;
    NySe::UniqueSocket m_listener;
};

// Connects, at most so often, until one connect is left without an answer: that one is not in the
// result.
std::vector<NySe::UniqueSocket> connectWhileAnswered(unsigned int port, size_t most);

// A listener whose queue is full: a connect to it stays unanswered.
class UnansweringPort {
  public:
    UnansweringPort();
    unsigned int port() const { return static_cast<unsigned int>(portOf(m_listener)); }

  private:
    WinsockSession m_winsock;
    NySe::UniqueSocket m_listener = bindToLoopback();
    std::vector<NySe::UniqueSocket> m_queued;
};

}  // namespace peers
