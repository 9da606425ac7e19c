// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/ServerConnection.h"

#include <new>

#include "NyServer/socket/CUT_WSThread.h"

void ServerConnection::start(Accepted accepted) {
    auto* connection = new (std::nothrow) ServerConnection(std::move(accepted));
    if (connection && port::startThread(threadMain, connection) == port::kNoThread)
        delete connection;
}

ServerConnection::~ServerConnection() {
    socketcalls::closeSocket(m_accepted.socket.release());
}

void ServerConnection::threadMain(void* connection) {
    auto* self = static_cast<ServerConnection*>(connection);
    const std::shared_ptr<RundownProtection> rundown = self->m_accepted.rundown;
    const bool isAttached = rundown->tryAttach(self->m_entry);
    if (isAttached) self->serve();
    delete self;
    // After the socket is closed, so that nothing of the connection is left.
    if (isAttached) rundown->detach();
}

void ServerConnection::serve() {
    CUT_WSThread* worker = createWorker();
    if (worker) initialize(*worker);
    m_accepted.rundown->leave(m_entry);
    if (!worker) return;
    runHandler(*worker);
    removeAndDestroy(worker);
}

CUT_WSThread* ServerConnection::createWorker() {
    return NySe::resultOr(nullptr, [this] { return m_accepted.server->CreateInstance(); });
}

void ServerConnection::initialize(CUT_WSThread& worker) {
    worker.m_socket = m_accepted.socket.get();
    worker.m_listenSocket = m_accepted.listenSocket;
    worker.m_peerAddress = m_accepted.peer;
    worker.m_owner = m_accepted.server;
    m_accepted.server->ThreadListAdd(&worker, port::currentThreadId(), worker.m_socket);
}

// An exception of a handler ends its connection only.
void ServerConnection::runHandler(CUT_WSThread& worker) {
    worker.SetReceiveTimeOut(socketcalls::kTimeOut);
    worker.SetSendTimeOut(socketcalls::kTimeOut);
    NySe::succeeds([&] { m_accepted.isTooMany ? worker.OnMaxConnect() : worker.OnConnect(); });
}

void ServerConnection::removeAndDestroy(CUT_WSThread* worker) {
    const RundownProtection::State state = m_accepted.rundown->reenter(m_entry);
    if (state != RundownProtection::State::Destroyed)
        m_accepted.server->ThreadListRemove(port::currentThreadId());
    if (state == RundownProtection::State::Open)
        release(worker);
    else
        delete worker;
    m_accepted.rundown->leave(m_entry);
}

void ServerConnection::release(CUT_WSThread* worker) {
    NySe::succeeds([&] { m_accepted.server->ReleaseInstance(worker); });
}
