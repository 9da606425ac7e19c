#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "NyServer/base/port/Port.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/RundownProtection.h"
#include "NyServer/socket/SocketCalls.h"

// The accept thread of a server, from StartAccept to its end. It may outlive the server, or a
// StopAccept followed by another StartAccept, for example while OnCanAccept does not return. It
// then uses neither the server nor the thread that replaced it.
//
// An error of the listening socket ends the thread. A connection that broke before it was accepted
// and a shortage of handles or buffers do not: the thread accepts again, after a short pause.
//
// The thread is always in accept, in that pause, in OnCanAccept, or in a step that holds the lock
// of RundownProtection. A caller that terminates the thread holds that lock, and so does not
// interrupt such a step.
class CUT_WSServer::AcceptThread {
  public:
    explicit AcceptThread(CUT_WSServer& server) : m_server(server), m_rundown(server.m_rundown) {}

    // Starts the thread, which keeps `accepting` alive. It does nothing before the caller releases
    // the lock. Returns the number of the thread, port::kNoThread on failure. REQUIRES: the caller
    // holds the RundownProtection::Lock.
    static uintptr_t start(const std::shared_ptr<AcceptThread>& accepting);

    // Returns whether the thread ended within the time.
    bool waitForEnd(DWORD milliseconds) const;

    // Returns when the thread is not about to use, or using, the listening socket. REQUIRES: accept
    // fails on that socket, and a stop was requested before.
    void waitUntilOutsideAccept() const;

    // Terminates the thread, where the platform can, and, if it ended within the time, releases
    // what it held. Failures are ignored: the thread then ends by itself, because the listening
    // socket is closed. REQUIRES: the caller holds the RundownProtection::Lock, and the thread has
    // not removed itself from the server.
    void terminate(uintptr_t startedThread, DWORD milliseconds);

  private:
    static void threadMain(void* accepting);
    bool isCurrent() const NY_REQUIRES(*m_rundown) {
        return !m_rundown->isDestroyed() && m_server.m_acceptThread.get() == this;
    }
    bool mayAccept(SOCKET& listener);
    bool acceptNext(SOCKET listener);
    bool mayAcceptAgain(int error);
    bool keepsAccepted();
    std::string addressText(const sockaddr_in& peer);
    bool isAllowed(const sockaddr_in& peer);
    void startConnection(SOCKET listener, const sockaddr_in& peer);
    void closeAccepted();

    CUT_WSServer& m_server;
    std::shared_ptr<RundownProtection> m_rundown;
    port::Thread m_thread;
    std::atomic<bool> m_isInAccept = false;
    NySe::UniqueSocket m_accepted;
    unsigned m_abortedConnections = 0;
    RundownProtection::Entry m_entry;
    std::shared_ptr<AcceptThread> m_self;  // the thread's reference
};
