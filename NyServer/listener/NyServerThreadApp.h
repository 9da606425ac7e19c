#pragma once

#include <afx.h>

#include <atomic>

#include "NyServer/base/port/Port.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_WSThread.h"

class NyServerApp;

// The worker that serves one connection of a NyServerApp: it answers the probes of the central
// server and passes its notifications on.
//
// Threads: as CUT_WSThread. Any thread may use setPaused and isPaused while the worker is in the
// list of its server. Ownership: the server outlives its workers.
class NYSERVER_API NyServerThreadApp : public CUT_WSThread {
  public:
    // Sets the priority of the calling thread to normal. `server` is not owned.
    explicit NyServerThreadApp(NyServerApp* server);
    // In the library, because the port is not exported.
    ~NyServerThreadApp() override;

    // Serves the peer until it disconnects, announces a body that is too long, or the server's
    // shut-down flag is set. The bytes of the action must arrive within 1 s, those of the length
    // within 15 s. An incomplete message is handled with the bytes that arrived. CFileException and
    // CArchiveException end the handling of one message. Other exceptions, as when out of memory,
    // leave the function and so end the connection.
    void OnConnect() override;

    // A paused worker completes the message that it has started to read and starts no other.
    // REQUIRES: not called by two threads at the same time.
    void setPaused(bool isPaused);
    NYSERVER_INLINE bool isPaused() const { return m_isPaused.load(std::memory_order_relaxed); }

    // Returns the action of the message that is being handled, else -1.
    NYSERVER_INLINE int getCurrentAction() const { return m_currentAction; }

  private:
    enum class Round { served, idle, unclear, refused };

    Round runRound();
    bool awaitMessage();
    bool awaitRelease();
    Round receiveMessage();
    int collect(int& value, int firstTimeOut, int timeOut);
    bool awaitRest(ULONGLONG deadline);
    bool handleMessage();
    bool receiveBody(CMemFile& body);
    void dispatch(CMemFile& body);
    void answerProbe();
    void forward(CMemFile& body);

    NyServerApp* m_server;
    int m_currentAction;
    std::atomic<bool> m_isPaused;
    port::Event m_released{true};  // set while the worker is not paused
};
