#include "apps/central/ListenerLink.h"

#include <algorithm>
#include <array>

#include "apps/common/SelfConnect.h"
#include "NyServer/socket/TimedConnect.h"

using port::Readiness;
using namespace socketcalls;

namespace {

constexpr DWORD kPauseBetweenConnectsMs = 200;
constexpr long kSendStep = 100'000;  // microseconds

NySe::UniqueSocket makeSocket() {
    NySe::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    const BOOL on = TRUE;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on),
                 sizeof on);
    return socket;
}

bool isWouldBlock() {
    return ::WSAGetLastError() == WSAEWOULDBLOCK;
}

}  // namespace

bool ListenerLink::open(const Patience& patience) {
    hear();
    while (!m_socket) {
        if (connectOnce(patience)) return true;
        if (patience.isOver()) return false;
        ::Sleep(kPauseBetweenConnectsMs);
    }
    return true;
}

bool ListenerLink::connectOnce(const Patience& patience) {
    NySe::UniqueSocket socket = makeSocket();
    const Readiness readiness =
        connectUntil(socket.get(), m_address, [&patience] { return patience.isOver(); });
    if (readiness != Readiness::ready || apps::isConnectedToItself(socket.get())) return false;
    m_socket = std::move(socket);
    m_heard.clear();
    ++m_opened;
    return true;
}

const std::string& ListenerLink::hear() {
    if (m_socket && !takeIn()) m_socket.reset();
    return m_heard;
}

// False when the other end has closed. What more there is than a few reads waits until the next
// time.
bool ListenerLink::takeIn() {
    std::array<char, 4096> said;
    for (int reads = 0; reads < 16; ++reads) {
        const int count = ::recv(m_socket.get(), said.data(), static_cast<int>(said.size()), 0);
        if (count < 1) return count != 0 && isWouldBlock();
        m_heard.append(said.data(), std::min(static_cast<size_t>(count), kHeard - m_heard.size()));
    }
    return true;
}

ListenerLink::Outcome ListenerLink::send(const std::string& bytes, Patience patience,
                                         size_t& sent) {
    sent = 0;
    const Outcome outcome = sendAll(bytes, patience, sent);
    if (outcome != Outcome::done) m_socket.reset();
    return outcome;
}

ListenerLink::Outcome ListenerLink::sendAll(const std::string& bytes, Patience& patience,
                                            size_t& sent) {
    while (sent < bytes.size()) {
        const int count =
            ::send(m_socket.get(), bytes.data() + sent, static_cast<int>(bytes.size() - sent), 0);
        if (count > 0) {
            sent += static_cast<size_t>(count);
            patience.startAgain();
            continue;
        }
        if (!isWouldBlock()) return Outcome::lost;
        if (patience.isOver()) return Outcome::tooSlow;
        if (port::waitFor(m_socket.get(), port::Wanted::writable, 0, kSendStep) < 0)
            return Outcome::lost;
    }
    return Outcome::done;
}
