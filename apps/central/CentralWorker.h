// CentralWorker: serves one client's connection.
#pragma once

#include <chrono>
#include <string>

#include "NyServer/socket/CUT_WSThread.h"

class CentralServer;
struct Frame;

// Made, run and deleted on the connection's own thread. One connection is one session; what the
// session holds in the server's tables is let go when the handler returns, however it does.
class CentralWorker : public CUT_WSThread {
  public:
    explicit CentralWorker(CentralServer& server) : m_server(server) {}

    void OnConnect() override;
    // Closes the connection at once.
    void OnMaxConnect() override;

    // The server shuts down, or the client's listener is dead, and the client with it.
    bool mustEnd() const;
    std::chrono::milliseconds framePatience() const;

  private:
    void serve();
    // False when the connection is over.
    bool answer(Frame& frame);
    void noticeDeadPeers();
    std::string name() const;

    bool sendWhole(const std::string& bytes);
    bool sendInSteps(const std::string& bytes);

    CentralServer& m_server;
    LONG m_session = 0;
};
