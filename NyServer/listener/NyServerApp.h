// NyServerApp: the listener to which the central server pushes notifications, and which hands them
// to the application's main window.
//
// What comes over a connection:
//
//   offset  bytes  content
//   0       4      action, signed
//   4       4      body length N, signed
//   8       N      body: the bytes of a message file
//
// All integers are little-endian. Action 1 is answered with the 4 bytes of 512. Actions 50 to 58
// are notifications; each is posted to the window as a message file of its own (NySeMemFile: the
// same action, schema 2015) whose payload is the body. Other actions are read and dropped.
#pragma once

#include <afxwin.h>

#include <atomic>

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_WSServer.h"
#include "NyServer/ThreadAnnotations.h"

// The host gives it a window and a port, then calls Start.
//
// What the window procedure does with a message NySe::_TM_NYSERVERMESSAGE: wParam is the size of a
// block in bytes, lParam its address. It reads the message file there, frees the block with
// GlobalFree(GlobalHandle(address)), and calls decreasePostMsgCount, once for each message.
// NyServerNotification does all three.
//
// When the window falls behind, so that more messages are waiting than nine tenths of what the
// system lets wait, the workers stop reading, and TCP holds the central server back; they go on
// when the window has consumed every message. That bounds the messages; their bytes are bounded by
// setLongestBody. Any host that reaches the port may send.
//
// Threads: one thread makes, starts and destroys the listener and uses its settings. The functions
// about the window and its messages may be called by any thread, stopThread excepted. Each
// connection has a worker on a thread of its own.
//
// Ownership: the window object stays the host's; from the return of setAppWnd on, the one set
// before is not used any more. So setAppWnd(nullptr) comes before the CWnd goes. A posted block
// belongs to the window. Messages may still be in the window's queue when the listener goes: the
// host drains the queue first, or gives NyServerNotification a null listener from then on.
//
// A derived listener that overrides a virtual function calls endConnections in its destructor.
class NYSERVER_API NyServerApp : public CUT_WSServer {
  public:
    NyServerApp();

    // Waits for all workers, without a limit: at most a round of 100 ms for one that is between
    // messages, but up to 30 s after the last byte for one whose peer leaves a message unfinished,
    // so that a peer that drips its bytes holds it for as long as it drips, and up to 30 s more for
    // an answer that the peer does not take. REQUIRES: not called by the thread of a worker.
    ~NyServerApp() override;

    // Listens on all interfaces at the port number, with a queue of 5, and accepts. 0, or the
    // result of ConnectToPort (then nothing is accepted) or of StartAccept. Once it accepts, 1,
    // through OnError, and nothing changes, until StopAccept.
    int Start();

    // The window that receives the notifications; null, or an object without a window: they are
    // dropped. Each call starts the count of messages at 0 again and lets the workers go on, also
    // for the object that is set already, whose window may be a new one: what the old window has
    // not consumed is lost with it. What the old window still counts as consumed afterwards is
    // subtracted from what the new one was posted.
    void setAppWnd(CWnd* window);
    NYSERVER_INLINE CWnd* getAppWnd() { return m_appWnd.load(std::memory_order_relaxed); }

    // Where Start listens.
    NYSERVER_INLINE void setPortNumber(unsigned short port) { m_portNumber = port; }
    NYSERVER_INLINE unsigned short getPortNumber() const { return m_portNumber; }

    // The longest body of a message, in bytes, 64 MiB unless set. A sender that announces more
    // loses its connection; nothing of the body is read or dispatched, and no memory is taken for
    // it. Any thread may call these two; a change holds for the messages that come after it.
    NYSERVER_INLINE void setLongestBody(unsigned int bytes) {
        m_longestBody.store(bytes, std::memory_order_relaxed);
    }
    NYSERVER_INLINE unsigned int getLongestBody() const {
        return m_longestBody.load(std::memory_order_relaxed);
    }

    // Kept for the host, and not used here.
    NYSERVER_INLINE void setSessionNumber(int session) { m_sessionNumber = session; }
    NYSERVER_INLINE int getSessionNumber() const { return m_sessionNumber; }

    // This host's first IPv4 address, and that of a named host, in dotted text; empty when there is
    // none or no memory is left.
    static CString _getIpAdress();
    static CString _getIpAdressByName(const CString& name);

    // Moves the content of `file` into a block and posts that to the window; `file` is empty then.
    // Without a window, or without memory for the block, the notification is dropped without a
    // word, and `file` keeps its content; it loses it when the window goes meanwhile. A message
    // that the system does not take is counted like one that it takes. REQUIRES: the block of
    // `file` comes from malloc, as its own does.
    void postMessageToMainFrame(unsigned int message, CMemFile& file);

    // Counts one more message as posted; pauses the workers when there are too many.
    void increasePostMsgCount();

    // Counts one message as consumed; lets the workers go on when none is left. A surplus call
    // does no harm.
    void decreasePostMsgCount();

    // The messages posted and not yet consumed.
    int getPostMsgCount();

    // Pauses all present workers or lets them go on. REQUIRES: a ThreadListLock, which only derived
    // listeners can take; so it is for them.
    void stopThread(bool pause) NY_REQUIRES(this);

  protected:
    // A NyServerThreadApp; null when there is no memory.
    CUT_WSThread* CreateInstance() override;
    // Deletes the worker; it may be null.
    void ReleaseInstance(CUT_WSThread* worker) override;

    // The number of waiting messages above which the workers are paused. Read from the system until
    // a value above 0 was found. REQUIRES: a ThreadListLock.
    long getPostMessageLimit() NY_REQUIRES(this);

    // Raises the shut-down flag, stops accepting and waits as the destructor does. Afterwards no
    // virtual function of the listener is called by a thread of its own.
    void endConnections();

  private:
    friend class NyServerNotification;

    HWND appWindow();
    void post(unsigned int message, DWORD size, void* address, UniqueGlobalBlock block);
    void resetPostMsgCount() NY_REQUIRES(this);
    void consumeEmptyMessage();

    // Changed under the ThreadListLock, read with or without.
    std::atomic<CWnd*> m_appWnd = nullptr;
    unsigned short m_portNumber = 0;
    int m_sessionNumber = 0;
    int m_postMsgCount NY_GUARDED_BY(this) = 0;
    long m_postMsgLimit NY_GUARDED_BY(this) = -1;
    int m_emptyMsgCount NY_GUARDED_BY(this) = 0;  // of the posted messages those without a block
    std::atomic<unsigned int> m_longestBody = 64 * 1024 * 1024;
};
