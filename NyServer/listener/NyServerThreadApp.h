#pragma once

#include <afx.h>

#include <atomic>

#include "NyServer/base/UniqueHandle.h"
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

    // Serves the peer until it is gone, announces a body longer than the server's longest, or the
    // server's shut-down flag is raised. The bytes of the action may come within 1 s, those of the
    // length within 15 s. A message that comes incomplete is handled with what came of it.
    // CFileException and CArchiveException end the handling of one message; another exception, as
    // when memory runs out, leaves the handler and so ends the connection.
    void OnConnect() override;

    // A paused worker finishes the message that it has begun to read and begins no other. It
    // resumes at once. REQUIRES: no other call at the same time.
    void setPaused(bool isPaused);
    NYSERVER_INLINE bool isPaused() const { return m_isPaused.load(std::memory_order_relaxed); }

    // The action of the message being handled, else -1.
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
    UniqueKernelHandle m_released;  // an event, set while the worker is not paused
};
