#include "apps/common/Session.h"

#include <charconv>

#include "apps/common/Utf8.h"
#include "NyServer/socket/SocketCodes.h"

namespace apps {

std::optional<ServerAddress> parseServer(const std::string& server) {
    const size_t colon = server.rfind(':');
    if (colon == std::string::npos || colon == 0) return std::nullopt;
    ServerAddress address{server.substr(0, colon)};
    const char* const end = server.data() + server.size();
    const auto [last, error] = std::from_chars(server.data() + colon + 1, end, address.port);
    if (error != std::errc() || last != end || address.port < 1 || address.port > 0xFFFF)
        return std::nullopt;
    return address;
}

void Session::close() {
    if (m_connected) m_client.disconnect();
    m_connected = m_registered = m_listening = false;
    m_listener.reset();
}

bool Session::connect() {
    if (m_connected) return true;
    const auto address = parseServer(m_account.server);
    m_connected = address && m_client.connect(address->port, address->host.c_str(), -1) == 0;
    return m_connected;
}

bool Session::open() {
    if (m_connected) return true;
    if (!connect()) return false;
    m_client.initializeSchema();
    if (m_client.getSchemaType() == NySe::noSchema) close();
    return m_connected;
}

bool Session::registerUser() {
    if (m_registered || !open()) return m_registered;
    m_user.setStrUserName(fromUtf8(m_account.user));
    m_user.setStrHostName(m_client.getHostName());
    m_user.setStrComputerName(m_client.getHostName());
    m_user.setSchema(NySe::schema2015);
    m_registered = m_client.getPortClient(m_user) != 0;
    return m_registered;
}

// The server releases a port at which nobody listens; after that, only another port is valid.
int Session::firstPort() {
    if (m_registered) return m_client.getAnotherPort();
    return registerUser() ? m_user.getPort() : 0;
}

NyServerApp& Session::listener() {
    if (!m_listener) m_listener = makeListener();
    return *m_listener;
}

std::unique_ptr<NyServerApp> Session::makeListener() const {
    return std::make_unique<NyServerApp>();
}

bool Session::listen() {
    return m_listening || listenFrom(firstPort());
}

bool Session::listenFrom(LONG port) {
    for (; port > 0; port = m_client.getAnotherPort()) {
        listener().setPortNumber(static_cast<unsigned short>(port));
        if (listener().Start() != UTE_SUCCESS) continue;
        m_user.setPort(port);
        return m_listening = true;
    }
    return false;
}

}  // namespace apps
