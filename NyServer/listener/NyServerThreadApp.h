#pragma once

#include <afx.h>

#include <atomic>

#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_WSThread.h"

class NyServerApp;

// The worker that serves one connection of a NyServerApp: answers the central server's probe and
// hands on its notifications.
//
// Threads: as CUT_WSThread; only the pause may be used by any thread, as long as the worker is in
// its server's list. Ownership: the server outlives its workers.
class NYSERVER_API NyServerThreadApp : public CUT_WSThread {
  public:
    // Sets the priority of the calling thread to normal.
    explicit NyServerThreadApp(NyServerApp* server);

    // Serves the peer until it is gone or the server's shut-down flag is raised. A message that
    // comes incomplete is handled with what came of it. CFileException and CArchiveException end
    // the handling of one message; another exception, as when memory runs out, leaves the handler
    // and so ends the connection.
    void OnConnect() override;

    // A paused worker reads nothing. It takes notice within 100 ms.
    NYSERVER_INLINE void setPaused(bool isPaused) {
        m_isPaused.store(isPaused, std::memory_order_relaxed);
    }
    NYSERVER_INLINE bool isPaused() const { return m_isPaused.load(std::memory_order_relaxed); }

    // The action of the message being handled, else -1.
    NYSERVER_INLINE int getCurrentAction() const { return m_currentAction; }

  private:
    enum class Round { served, idle, unclear };

    Round runRound();
    bool awaitMessage();
    Round receiveMessage();
    void handleMessage();
    void receiveBody(CMemFile& body);
    void dispatch(CMemFile& body);
    void answerProbe();
    void forward(CMemFile& body);

    NyServerApp* m_server;
    int m_currentAction;
    std::atomic<bool> m_isPaused;
};
