#include "tests/online/WebServer.h"

#include <numeric>

std::string WebRequest::path() const {
    const size_t from = head.find(' ') + 1;
    return head.substr(from, head.find(' ', from) - from);
}

std::string WebRequest::header(const std::string& name) const {
    const std::string start = "\r\n" + name + ": ";
    const size_t from = head.find(start);
    if (from == std::string::npos) return {};
    const size_t value = from + start.size();
    return head.substr(value, head.find("\r\n", value) - value);
}

WebServer::WebServer(peers::Script answer)
    : m_peer([this, answer](peers::Connection& connection) { serve(connection, answer); }) {}

CString WebServer::address() const {
    return CString(("http://127.0.0.1:" + std::to_string(port()) + "/").c_str());
}

void WebServer::serve(peers::Connection& connection, const peers::Script& answer) {
    {
        const std::lock_guard lock(m_mutex);
        ++m_connections;
    }
    std::string head;
    while (head.find("\r\n\r\n") == std::string::npos) {
        const std::string piece = connection.receive();
        if (piece.empty()) return;
        head += piece;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back({head});
    }
    answer(connection);
}

std::vector<WebRequest> WebServer::requests() const {
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

std::vector<std::string> WebServer::paths() const {
    std::vector<std::string> paths;
    for (const WebRequest& request : requests()) paths.push_back(request.path());
    return paths;
}

int WebServer::connections() const {
    const std::lock_guard lock(m_mutex);
    return m_connections;
}

std::string webAnswer(const std::string& body, const std::string& status, long long length) {
    if (length < 0) length = static_cast<long long>(body.size());
    return "HTTP/1.1 " + status + "\r\nContent-Type: text/xml\r\nConnection: close\r\n" +
           "Cache-Control: no-store\r\n" + "Content-Length: " + std::to_string(length) +
           "\r\n\r\n" + body;
}

peers::Script page(const std::string& body, const std::string& status) {
    return peers::sendingAndClosing(webAnswer(body, status));
}

peers::Script pageInPieces(const std::vector<std::string>& pieces, int pauseMs) {
    const std::string body = std::accumulate(pieces.begin(), pieces.end(), std::string());
    std::vector<std::string> sent = pieces;
    sent.front() = webAnswer(pieces.front(), "200 OK", static_cast<long long>(body.size()));
    return peers::sendingPieces(sent, pauseMs);
}

peers::Script cutPage(const std::string& body, long long promised) {
    return peers::sendingAndClosing(webAnswer(body, "200 OK", promised));
}
