#pragma once

#include <memory>
#include <string>

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/socket/RundownProtection.h"
#include "NyServer/socket/SocketCalls.h"

// One run of a server's accepting thread, from StartAccept to its end. It may last longer than the
// server or than the server's interest in it, for example while OnCanAccept does not return; the
// thread then touches neither the server nor the run that has taken its place.
//
// A failure of the listening socket ends the thread. A connection that broke before it was accepted
// and a shortage of handles or buffers do not: after a short pause the thread accepts again.
//
// The thread is at all times in accept, in that pause, in OnCanAccept, or in a step that it does
// under the door's lock. Whoever ends it by force holds that lock and so does not interrupt such a
// step.
class CUT_WSServer::AcceptRun {
  public:
    explicit AcceptRun(CUT_WSServer& server) : m_server(server), m_rundown(server.m_rundown) {}

    // Starts the thread, which keeps `run` alive; it does nothing before the caller lets the door's
    // lock go. What the server is to note of it, or -1. REQUIRES: the door's lock.
    static uintptr_t start(const std::shared_ptr<AcceptRun>& run);

    // False when the thread is still there after so long.
    bool awaitEnd(DWORD milliseconds) const;

    // Ends the thread by force and, when it is gone within so long, takes back what it held.
    // Failure is ignored: the thread then ends by itself once the listening socket is closed.
    // REQUIRES: the door's lock, and that the thread has not signed off.
    void endByForce(uintptr_t startedThread, DWORD milliseconds);

  private:
    static void runThread(void* run);
    bool isCurrent() const {
        return !m_rundown->isDestroyed() && m_server.m_acceptRun.get() == this;
    }
    bool mayAccept(SOCKET& listener);
    bool serveNext(SOCKET listener);
    bool mayAcceptAgain(int error);
    bool keepsAccepted();
    std::string addressText(const sockaddr_in& peer);
    bool isWelcome(const sockaddr_in& peer);
    void handOver(SOCKET listener, const sockaddr_in& peer);
    void dropAccepted();

    CUT_WSServer& m_server;
    std::shared_ptr<RundownProtection> m_rundown;
    // A handle of our own: the one that _beginthread returns closes itself when the thread ends.
    UniqueKernelHandle m_thread;
    UniqueSocket m_accepted;
    unsigned m_lostConnections = 0;
    RundownProtection::Entry m_entry;
    std::shared_ptr<AcceptRun> m_self;  // the thread's share
};
