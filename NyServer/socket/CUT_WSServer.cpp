// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/CUT_WSServer.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "NyServer/socket/AcceptThread.h"
#include "NyServer/socket/CUT_WSThread.h"
#include "NyServer/socket/RundownProtection.h"
#include "NyServer/socket/SocketCalls.h"
#include "NyServer/socket/SocketCodes.h"
#include "NyServer/socket/TimedConnect.h"

namespace {

constexpr int kLargestMaximum = 32000;
constexpr ULONGLONG kStopTimeOut = 30000;     // ms
constexpr ULONGLONG kTerminationTime = 1000;  // of that, ms reserved for terminating the thread
constexpr DWORD kEndByItselfTime = 500;       // ms
constexpr ULONGLONG kNever = std::numeric_limits<ULONGLONG>::max();

DWORD leftUntil(ULONGLONG deadline) {
    const ULONGLONG now = port::milliseconds();
    return now < deadline ? static_cast<DWORD>(deadline - now) : 0;
}

}  // namespace

CUT_WSServer::CUT_WSServer() : m_rundown(std::make_shared<RundownProtection>()) {
    port::startSockets(m_winsockData);
}

CUT_WSServer::~CUT_WSServer() {
    m_rundown->close();
    SetShutDownFlag(1);
    StopAccept();
    CloseListenSocket();
    m_rundown->markDestroyed();
    FreeThreadList();
    port::stopSockets();
}

int CUT_WSServer::ConnectToPort(unsigned short port, int queueSize, short family,
                                unsigned long address) {
    if (IsAccepting()) return OnError(UTE_ERROR);
    ++m_startUpCount;
    if (!port::startSockets(m_winsockData)) return OnError(UTE_ERROR);
    CloseListenSocket();
    m_serverAddress = socketcalls::makeAddress(family, port, address);
    m_listenSocket = port::createSocket(AF_INET, SOCK_STREAM, GetProtocol());
    if (m_listenSocket == INVALID_SOCKET) return OnError(UTE_SOCK_CREATE_FAILED);
    if (!port::bindSocket(m_listenSocket, m_serverAddress)) return OnError(UTE_SOCK_BIND_FAILED);
    if (!port::listenOn(m_listenSocket, queueSize)) return OnError(UTE_SOCK_LISTEN_ERROR);
    m_port.store(port, std::memory_order_relaxed);
    return OnError(UTE_SUCCESS);
}

int CUT_WSServer::StartAccept() {
    if (IsAccepting()) return OnError(UTE_ERROR);
    return OnError(StartAcceptThread() ? UTE_SUCCESS : UTE_ERROR);
}

// The new thread waits for the lock, so it finds the members set, however soon it ends.
bool CUT_WSServer::StartAcceptThread() {
    const RundownProtection::Lock lock(*m_rundown);
    m_stopRequested = 0;
    m_acceptThread =
        NySe::resultOr(nullptr, [this] { return std::make_shared<AcceptThread>(*this); });
    if (!m_acceptThread) return false;
    const uintptr_t thread = AcceptThread::start(m_acceptThread);
    if (thread == port::kNoThread) return false;
    m_acceptThreadHandle = thread;
    m_accepting = 1;
    return true;
}

int CUT_WSServer::StopAccept() {
    if (m_accepting == 1) {
        m_accepting = 0;
        m_stopRequested = 1;
        const ULONGLONG deadline = port::milliseconds() + kStopTimeOut;
        if (WakeAcceptThread(deadline - kTerminationTime) == UTE_SUCCESS)
            m_acceptThread->waitForEnd(leftUntil(deadline));
        else
            EndAcceptThread(deadline);
        CloseListenSocket();
    }
    if (m_startUpCount >= 1) {
        --m_startUpCount;
        port::stopSockets();
    }
    return 0;
}

// A terminated thread never releases the locks that it holds, such as those of the heap or the
// loader. So it first gets time to end by itself, which a failing accept causes. What is left after
// that is a thread inside OnCanAccept.
void CUT_WSServer::EndAcceptThread(ULONGLONG deadline) {
    CloseListenSocket();
    if (!m_acceptThread->waitForEnd(std::min(kEndByItselfTime, leftUntil(deadline)))) {
        const RundownProtection::Lock lock(*m_rundown);
        if (m_acceptThreadHandle != port::kNoThread)
            m_acceptThread->terminate(m_acceptThreadHandle, leftUntil(deadline));
    }
    m_acceptThreadHandle = port::kNoThread;
}

int CUT_WSServer::TempConnect(unsigned int port, char* address) {
    return ConnectAndClose(port, address, kNever, [] { return false; });
}

// A full listen queue may leave the connect without an answer until the deadline. If the accepting
// thread has ended by itself meanwhile, there is none to wake.
int CUT_WSServer::WakeAcceptThread(ULONGLONG deadline) {
    return ConnectAndClose(GetPort(), "127.0.0.1", deadline,
                           [this] { return m_acceptThreadHandle == port::kNoThread; });
}

int CUT_WSServer::ConnectAndClose(unsigned int port, const char* address, ULONGLONG deadline,
                                  const std::function<bool()>& isCancelled) {
    const SOCKET socket = port::createSocket(AF_INET, SOCK_STREAM, 0);
    if (socket == INVALID_SOCKET) return OnError(UTE_SOCK_CREATE_FAILED);
    auto report = [&](bool succeeded) {
        if (!succeeded) OnStatus(SocketErrorText(&socket, nullptr));
        return succeeded;
    };
    const sockaddr_in peer = socketcalls::makeAddress(AF_INET, port, inet_addr(address));
    const auto isOver = [&] { return port::milliseconds() >= deadline || isCancelled(); };
    const auto result = socketcalls::connectUntil(socket, peer, isOver);
    if (result == port::Readiness::pending && isCancelled()) {
        port::closeSocket(socket);
        return OnError(UTE_SUCCESS);
    }
    const bool isConnected = result == port::Readiness::ready;
    report(isConnected);
    report(port::shutDown(socket));
    report(port::closeSocket(socket));
    return OnError(isConnected ? UTE_SUCCESS : UTE_SOCK_CONNECT_FAILED);
}

int CUT_WSServer::SetMaxConnections(int n) {
    if (n < 1 || n > kLargestMaximum) return -1;
    m_maxConnections.store(n, std::memory_order_relaxed);
    return n;
}

int CUT_WSServer::SetPort(unsigned int port) {
    m_port.store(port, std::memory_order_relaxed);
    return OnError(UTE_SUCCESS);
}

unsigned int CUT_WSServer::GetBoundPort() const {
    return static_cast<unsigned int>(socketcalls::localPort(m_listenSocket));
}

int CUT_WSServer::Pause() {
    return 0;
}

int CUT_WSServer::Resume() {
    return 0;
}

long CUT_WSServer::OnCanAccept(const char*) {
    return 1;
}

int CUT_WSServer::OnStatus(const WCHAR*) {
    return 0;
}

int CUT_WSServer::OnError(int code) {
    return code;
}

bool CUT_WSServer::RunDownIfIdle() {
    return m_rundown->closeIfIdle();
}

void CUT_WSServer::RunDown() {
    m_rundown->close();
    m_rundown->waitUntilEmpty();
}

// Where accept fails without a close, the thread leaves it first: another thread's socket may get
// the handle as soon as it is closed.
void CUT_WSServer::CloseListenSocket() {
    const SOCKET socket = m_listenSocket.exchange(INVALID_SOCKET);
    if (socket == INVALID_SOCKET) return;
    if (m_acceptThread && port::stopListening(socket)) m_acceptThread->waitUntilOutsideAccept();
    socketcalls::closeSocket(socket);
}

CUT_WSServer::ThreadListLock::ThreadListLock(CUT_WSServer& server)
    : m_mutex(server.m_threadListLock) {
    m_mutex.lock();
}

CUT_WSServer::ThreadListLock::~ThreadListLock() {
    m_mutex.unlock();
}

int CUT_WSServer::ThreadListAdd(CUT_WSThread* worker, DWORD threadId, SOCKET socket) {
    const ThreadListLock lock(*this);
    auto* entry =
        new (std::nothrow) ThreadListEntry{worker, threadId, socket, nullptr, m_threadList};
    if (!entry) return 0;
    if (m_threadList) m_threadList->previous = entry;
    m_threadList = entry;
    ++m_connectionCount;
    return 1;
}

int CUT_WSServer::ThreadListRemove(DWORD threadId) {
    const ThreadListLock lock(*this);
    ThreadListEntry* entry = m_threadList;
    while (entry && entry->threadId != threadId) entry = entry->next;
    if (!entry) return 1;
    (entry->previous ? entry->previous->next : m_threadList) = entry->next;
    if (entry->next) entry->next->previous = entry->previous;
    delete entry;
    --m_connectionCount;
    return 1;
}

int CUT_WSServer::ThreadListGetLength() {
    return ThreadListForEach([](ThreadListEntry&) {});
}

int CUT_WSServer::ThreadListKill() {
    const ThreadListLock lock(*this);
    ThreadListForEach([](ThreadListEntry& entry) {
        CancelBlockingCall();
        entry.worker->m_abort.store(1, std::memory_order_relaxed);
        entry.worker->OnError(UTE_SUCCESS);
    });
    return FreeThreadList();
}

int CUT_WSServer::FreeThreadList() {
    const ThreadListLock lock(*this);
    int length = 0;
    while (m_threadList) {
        delete std::exchange(m_threadList, m_threadList->next);
        ++length;
    }
    m_connectionCount = 0;
    return length;
}
