// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/AcceptThread.h"

#include "NyServer/socket/ServerConnection.h"

namespace {

constexpr DWORD kRetryPause = 20;  // ms
constexpr unsigned kAbortedWithoutPause = 64;

bool isOutOfResources(int error) {
    return error == WSAEMFILE || error == WSAENOBUFS;
}

// Returns whether a connection broke before it was accepted.
bool isAbortedConnection(int error) {
    return error == WSAECONNRESET || error == WSAECONNABORTED || error == WSAENOTCONN;
}

}  // namespace

uintptr_t CUT_WSServer::AcceptThread::start(const std::shared_ptr<AcceptThread>& accepting) {
    accepting->m_self = accepting;
    const uintptr_t thread = accepting->m_thread.start(threadMain, accepting.get());
    if (thread == port::kNoThread) accepting->m_self.reset();
    return thread;
}

bool CUT_WSServer::AcceptThread::waitForEnd(DWORD milliseconds) const {
    return m_thread.waitForEnd(milliseconds);
}

void CUT_WSServer::AcceptThread::waitUntilOutsideAccept() const {
    while (m_isInAccept) port::sleep(1);
}

void CUT_WSServer::AcceptThread::threadMain(void* accepting) {
    auto* self = static_cast<AcceptThread*>(accepting);
    SOCKET listener = INVALID_SOCKET;
    while (self->mayAccept(listener) && self->acceptNext(listener)) {
    }
    const std::shared_ptr<AcceptThread> last = std::move(self->m_self);
}

bool CUT_WSServer::AcceptThread::mayAccept(SOCKET& listener) {
    const RundownProtection::Lock lock(*m_rundown);
    if (!isCurrent()) return false;
    if (m_server.m_stopRequested == 1) {
        m_server.m_accepting = 0;
        m_server.m_stopRequested = 0;
        m_server.m_acceptThreadHandle = port::kNoThread;
        return false;
    }
    listener = m_server.m_listenSocket;
    m_isInAccept = true;
    return true;
}

// Returns false to end the thread.
bool CUT_WSServer::AcceptThread::acceptNext(SOCKET listener) {
    sockaddr_in peer{};
    m_accepted.reset(port::acceptFrom(listener, peer));
    const int error = m_accepted ? 0 : port::lastSocketError();
    m_isInAccept = false;
    if (!m_accepted && mayAcceptAgain(error)) return true;
    if (!keepsAccepted()) return false;
    if (isAllowed(peer))
        startConnection(listener, peer);
    else
        closeAccepted();
    return true;
}

// Returns whether the listening socket is usable although accept failed. Pauses often enough to
// avoid a busy loop, whatever errors the system repeats.
bool CUT_WSServer::AcceptThread::mayAcceptAgain(int error) {
    if (!isOutOfResources(error) && !isAbortedConnection(error)) return false;
    if (isOutOfResources(error) || ++m_abortedConnections % kAbortedWithoutPause == 0)
        port::sleep(kRetryPause);
    return true;
}

// A stop is requested before the listening socket is closed. So a connection that is accepted
// without such a request is ours, and not that of an unrelated socket that got the same handle.
// Where only the close ends accept, a connection of the latter is closed at worst, because the lock
// cannot be held during accept.
bool CUT_WSServer::AcceptThread::keepsAccepted() {
    const RundownProtection::Lock lock(*m_rundown);
    const bool isOurs = isCurrent();
    if (m_accepted && isOurs && m_server.m_stopRequested != 1) return true;
    closeAccepted();
    if (isOurs) m_server.m_acceptThreadHandle = port::kNoThread;
    return false;
}

// Under the lock because it may allocate, and no thread may be terminated that holds the lock of
// the heap.
std::string CUT_WSServer::AcceptThread::addressText(const sockaddr_in& peer) {
    const RundownProtection::Lock lock(*m_rundown);
    return socketcalls::dottedText(peer);
}

bool CUT_WSServer::AcceptThread::isAllowed(const sockaddr_in& peer) {
    const std::string address = addressText(peer);
    if (!m_rundown->tryEnter(m_entry)) return false;
    const bool isAllowed =
        NySe::resultOr(false, [&] { return m_server.OnCanAccept(address.c_str()) != 0; });
    m_rundown->leave(m_entry);
    return isAllowed;
}

void CUT_WSServer::AcceptThread::startConnection(SOCKET listener, const sockaddr_in& peer) {
    const RundownProtection::Lock lock(*m_rundown);
    if (!isCurrent()) return closeAccepted();
    const bool isTooMany = m_server.GetMaxConnections() <= m_server.m_connectionCount;
    ServerConnection::start(
        {std::move(m_accepted), listener, peer, isTooMany, &m_server, m_rundown});
}

void CUT_WSServer::AcceptThread::closeAccepted() {
    const RundownProtection::Lock lock(*m_rundown);
    if (m_accepted) socketcalls::closeSocket(m_accepted.release());
}
