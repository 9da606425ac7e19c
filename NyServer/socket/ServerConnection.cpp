// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/ExceptionBoundary.h"

#include "NyServer/socket/ServerConnection.h"

#include <process.h>

#include <new>

#include "NyServer/socket/CUT_WSThread.h"

void ServerConnection::start(Accepted accepted) {
    auto* connection = new (std::nothrow) ServerConnection(std::move(accepted));
    if (connection && ::_beginthread(runThread, 0, connection) == static_cast<uintptr_t>(-1))
        delete connection;
}

ServerConnection::~ServerConnection() {
    socketcalls::closeSocket(m_accepted.socket.release());
}

void ServerConnection::runThread(void* connection) {
    auto* self = static_cast<ServerConnection*>(connection);
    const std::shared_ptr<ServerDoor> door = self->m_accepted.door;
    const bool isResident = door->admit(self->m_visit);
    if (isResident) self->serve();
    delete self;
    // Only now that the socket is closed is there nothing left of the connection.
    if (isResident) door->moveOut();
}

void ServerConnection::serve() {
    CUT_WSThread* worker = makeWorker();
    if (worker) introduce(*worker);
    m_accepted.door->leave(m_visit);
    if (!worker) return;
    runHandler(*worker);
    dismiss(worker);
}

CUT_WSThread* ServerConnection::makeWorker() {
    return NySe::resultOr(nullptr, [this] { return m_accepted.server->CreateInstance(); });
}

void ServerConnection::introduce(CUT_WSThread& worker) {
    worker.m_socket = m_accepted.socket.get();
    worker.m_listenSocket = m_accepted.listenSocket;
    worker.m_peerAddress = m_accepted.peer;
    worker.m_owner = m_accepted.server;
    m_accepted.server->ThreadListAdd(&worker, ::GetCurrentThreadId(), worker.m_socket);
}

// What a handler throws ends its connection and nothing else.
void ServerConnection::runHandler(CUT_WSThread& worker) {
    worker.SetReceiveTimeOut(socketcalls::kTimeOut);
    worker.SetSendTimeOut(socketcalls::kTimeOut);
    NySe::succeeds([&] { m_accepted.isTooMany ? worker.OnMaxConnect() : worker.OnConnect(); });
}

void ServerConnection::dismiss(CUT_WSThread* worker) {
    const ServerDoor::State state = m_accepted.door->comeBack(m_visit);
    if (state != ServerDoor::State::Gone)
        m_accepted.server->ThreadListRemove(::GetCurrentThreadId());
    if (state == ServerDoor::State::Open)
        release(worker);
    else
        delete worker;
    m_accepted.door->leave(m_visit);
}

void ServerConnection::release(CUT_WSThread* worker) {
    NySe::succeeds([&] { m_accepted.server->ReleaseInstance(worker); });
}
