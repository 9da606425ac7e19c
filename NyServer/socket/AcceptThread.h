#pragma once

#include <memory>
#include <string>

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/RundownProtection.h"
#include "NyServer/socket/SocketCalls.h"

// A server's accepting thread, from StartAccept to its end. It may last longer than the
// server or than the server's interest in it, for example while OnCanAccept does not return; the
// thread then touches neither the server nor the thread that has taken its place.
//
// A failure of the listening socket ends the thread. A connection that broke before it was accepted
// and a shortage of handles or buffers do not: after a short pause the thread accepts again.
//
// The thread is at all times in accept, in that pause, in OnCanAccept, or in a step that it does
// under the lock of RundownProtection. A caller that ends it by force holds that lock and so does
// not interrupt such a step.
class CUT_WSServer::AcceptThread {
  public:
    explicit AcceptThread(CUT_WSServer& server) : m_server(server), m_rundown(server.m_rundown) {}

    // Starts the thread, which keeps `accepting` alive; it does nothing before the caller
    // releases the lock. The thread as _beginthread returns it, or -1. REQUIRES:
    // RundownProtection::Lock.
    static uintptr_t start(const std::shared_ptr<AcceptThread>& accepting);

    // False when the thread is still there after so long.
    bool waitForEnd(DWORD milliseconds) const;

    // Ends the thread by force and, when it is gone within so long, takes back what it held.
    // Failure is ignored: the thread then ends by itself once the listening socket is closed.
    // REQUIRES: RundownProtection::Lock, and that the thread has not removed itself from the
    // server.
    void endByForce(uintptr_t startedThread, DWORD milliseconds);

  private:
    static void runThread(void* accepting);
    bool isCurrent() const NY_REQUIRES(*m_rundown) {
        return !m_rundown->isDestroyed() && m_server.m_acceptThread.get() == this;
    }
    bool mayAccept(SOCKET& listener);
    bool serveNext(SOCKET listener);
    bool mayAcceptAgain(int error);
    bool keepsAccepted();
    std::string addressText(const sockaddr_in& peer);
    bool isAllowed(const sockaddr_in& peer);
    void handOver(SOCKET listener, const sockaddr_in& peer);
    void dropAccepted();

    CUT_WSServer& m_server;
    std::shared_ptr<RundownProtection> m_rundown;
    // A handle of our own: the one that _beginthread returns closes itself when the thread ends.
    UniqueKernelHandle m_thread;
    UniqueSocket m_accepted;
    unsigned m_abortedConnections = 0;
    RundownProtection::Entry m_entry;
    std::shared_ptr<AcceptThread> m_self;  // the thread's share
};
