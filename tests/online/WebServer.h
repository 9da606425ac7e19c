// A real HTTP server on a free port of 127.0.0.1 that keeps what it is asked.
#pragma once

#include <afx.h>

#include <mutex>
#include <string>
#include <vector>

#include "tests/socket/Peers.h"

struct WebRequest {
    std::string head;  // the request line and the headers, up to the empty line

    std::string path() const;
    // The value of a header, "" without it.
    std::string header(const std::string& name) const;
};

// Serves one connection at a time and one request on each; answers by `answer`, then closes.
class WebServer {
  public:
    explicit WebServer(peers::Script answer);

    unsigned int port() const { return m_peer.port(); }
    CString address() const;  // ends in a slash

    std::vector<WebRequest> requests() const;
    std::vector<std::string> paths() const;
    int connections() const;

  private:
    void serve(peers::Connection& connection, const peers::Script& answer);

    mutable std::mutex m_mutex;
    std::vector<WebRequest> m_requests;
    int m_connections = 0;
    peers::Peer m_peer;
};

// The bytes of an answer that says how long its body is; `length` is a lie when it is not -1. No
// cache may keep it: a later server may get the same port.
std::string webAnswer(const std::string& body, const std::string& status = "200 OK",
                      long long length = -1);

// Answers.
peers::Script page(const std::string& body, const std::string& status = "200 OK");
// The body in pieces, each once the pause is over that follows the one before.
peers::Script pageInPieces(const std::vector<std::string>& pieces, int pauseMs);
// As much of the body as there is, though more was promised.
peers::Script cutPage(const std::string& body, long long promised);
