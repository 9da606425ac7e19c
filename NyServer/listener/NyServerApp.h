// NyServerApp: the listener to which the central server sends notifications, and which passes them
// on to the application's main window.
//
// A message on a connection:
//
//   offset  bytes  content
//   0       4      action, signed
//   4       4      body length N, signed
//   8       N      body: the bytes of a message file
//
// All integers are little-endian. Do not change the format. Action 1 is answered with the 4 bytes
// of 512. Actions 50 to 58 are notifications: each is posted to the window as a message file of its
// own (NySeMemFile: the same action, schema 2015) whose payload is the body. Other actions are read
// and ignored.
#pragma once

#include <afx.h>

#include <atomic>
#include <functional>
#include <memory>

#include "NyServer/detail/ThreadAnnotations.h"
#include "NyServer/framing/NySeActions.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/socket/CUT_WSServer.h"

class CWnd;
class NotificationQueue;

// The host sets a window, or a function, and a port, and then calls Start.
//
// For a message NySe::_TM_NYSERVERMESSAGE, wParam is the size of a block in bytes and lParam its
// address. The window procedure reads the message file there, frees the block with
// GlobalFree(GlobalHandle(address)), and calls decreasePostMsgCount, once for each message.
// NyServerNotification does all three.
//
// Back pressure: when more messages wait than nine tenths of the system's limit for posted
// messages, the workers stop reading, and TCP slows the central server down. They continue when the
// window has consumed every message. This limits the number of messages; setLongestBody limits
// their size. Any host that reaches the port may send.
//
// Threads: one thread creates, starts and destroys the listener and uses its settings. Any thread
// may call the functions about the window and its messages, except stopThread. Each connection has
// a worker on a thread of its own.
//
// Ownership: the window object stays the host's. After setAppWnd returns, the previous window is
// not used; so a host calls setAppWnd(nullptr) before it destroys the CWnd. A posted block belongs
// to the window. Messages may still be in the window's queue when the listener is destroyed: the
// host first empties the queue, or passes NyServerNotification a null listener from then on.
//
// REQUIRES: the destructor of a derived class that overrides a virtual function, or whose members
// the receiver uses, calls endConnections.
class NYSERVER_API NyServerApp : public CUT_WSServer {
  public:
    NyServerApp();

    // Waits for all workers, without a limit. A worker between messages ends within 100 ms. One
    // whose peer leaves a message unfinished ends 30 s after the last byte, so a peer that sends
    // single bytes delays it for as long as it does so; an answer that the peer does not read takes
    // up to 30 s more. Then waits until the receiver, if one is set, has been called with every
    // notification that waits. REQUIRES: not called on the thread of a worker or by the receiver.
    ~NyServerApp() override;

    // Listens at the port number on all interfaces, with a queue of 5, and accepts. Returns
    // UTE_SUCCESS, or the failure of ConnectToPort or StartAccept; then nothing is accepted. From a
    // successful Start until StopAccept, returns UTE_ERROR and changes nothing.
    int Start();

    // Sets the window that receives the notifications. If it is null or has no window handle, as on
    // every platform but Windows, notifications are discarded, unless there is a receiver. Each
    // call resets the count of messages to 0 and lets the workers continue, even for the same
    // object, whose window may be a new one: messages that the old window has not consumed are no
    // longer counted. Messages that the old window reports as consumed later are subtracted from
    // the count of the new one.
    void setAppWnd(CWnd* window);
    NYSERVER_INLINE CWnd* getAppWnd() { return m_appWnd.load(std::memory_order_relaxed); }

    // Receives a notification. `payload` is what the central server sent, positioned at its start;
    // it cannot grow, and is valid during the call. `action` is noAction, with an empty payload,
    // for a file that the host posted itself and that contains no notification.
    using Receiver = std::function<void(NySe::ActionType action, CMemFile& payload)>;

    // Sets the function that receives the notifications in place of a window; null for none. It is
    // called on a thread of the listener, with one notification at a time, in the order of their
    // arrival. Exceptions of the function are discarded. A notification counts as consumed when the
    // function returns, so that back pressure is the same as with a window. Discards notifications
    // that wait for the previous function, waits for its running call, during which the new one may
    // be called already, and resets the count as setAppWnd does; what the previous function
    // consumes is not subtracted from the count of the new one. At most 10,000 notifications and
    // 256 MiB wait; further ones are dropped, which only peers that ignore the back pressure reach.
    // Returns false, with nothing changed, if out of memory or threads. REQUIRES: not called by the
    // function.
    bool setReceiver(Receiver receiver);

    // The port on which Start listens, in host order.
    NYSERVER_INLINE void setPortNumber(unsigned short port) { m_portNumber = port; }
    NYSERVER_INLINE unsigned short getPortNumber() const { return m_portNumber; }

    // The maximum length of a message body in bytes, 64 MiB by default. The connection of a sender
    // that announces a longer one is closed; the body is not read and no memory is allocated for
    // it. Any thread may call these two; a change applies to later messages.
    NYSERVER_INLINE void setLongestBody(unsigned int bytes) {
        m_longestBody.store(bytes, std::memory_order_relaxed);
    }
    NYSERVER_INLINE unsigned int getLongestBody() const {
        return m_longestBody.load(std::memory_order_relaxed);
    }

    // Stored for the host; not used by this class.
    NYSERVER_INLINE void setSessionNumber(int session) { m_sessionNumber = session; }
    NYSERVER_INLINE int getSessionNumber() const { return m_sessionNumber; }

    // Return this host's first IPv4 address, and that of the named host, as dotted text; empty if
    // there is none or out of memory.
    static CString _getIpAdress();
    static CString _getIpAdressByName(const CString& name);

    // Moves the content of `file` into a block and posts the block to the window, or passes it to
    // the receiver; `file` is empty afterwards. Without a window or receiver, or if out of memory,
    // the notification is discarded and `file` keeps its content; if the window is destroyed during
    // the call, the content is lost too. A message that the system refuses is counted like a posted
    // one. REQUIRES: the block of `file` was allocated with malloc, as CMemFile does.
    void postMessageToMainFrame(unsigned int message, CMemFile& file);

    // Counts one message as posted, and pauses the workers if too many are waiting.
    void increasePostMsgCount();

    // Counts one message as consumed, and lets the workers continue if none is waiting. Extra calls
    // are harmless.
    void decreasePostMsgCount();

    // Returns the number of messages that are posted and not consumed.
    int getPostMsgCount();

    // Pauses all present workers or lets them continue. REQUIRES: the caller holds a
    // ThreadListLock, which is available to derived classes only.
    void stopThread(bool pause) NY_REQUIRES(this);

  protected:
    // Returns a new NyServerThreadApp; null if out of memory.
    CUT_WSThread* CreateInstance() override;
    // Deletes the worker, which may be null.
    void ReleaseInstance(CUT_WSThread* worker) override;

    // Returns the number of waiting messages above which the workers are paused. Reads the system's
    // limit until that gives a value above 0. REQUIRES: the caller holds a ThreadListLock.
    long getPostMessageLimit() NY_REQUIRES(this);

    // Sets the shut-down flag, stops accepting, and waits as the destructor does. Afterwards no
    // thread of the listener calls its virtual functions or the receiver.
    void endConnections();

  private:
    friend class NyServerNotification;

    static DWORD systemPostMessageLimit();
    HWND appWindow();
    bool post(unsigned int message, DWORD size, void* address);
    void postToWindow(unsigned int message, CMemFile& file);
    std::unique_ptr<NotificationQueue> replaceQueue(std::unique_ptr<NotificationQueue> next);
    bool putIntoQueue(CMemFile& file);
    void countConsumed(const NotificationQueue& queue);
    void resetPostMsgCount() NY_REQUIRES(this);
    void consumeEmptyMessage();

    // Written under the ThreadListLock; read with or without it.
    std::atomic<CWnd*> m_appWnd = nullptr;
    unsigned short m_portNumber = 0;
    int m_sessionNumber = 0;
    int m_postMsgCount NY_GUARDED_BY(this) = 0;
    long m_postMsgLimit NY_GUARDED_BY(this) = -1;
    int m_emptyMsgCount NY_GUARDED_BY(this) = 0;  // posted messages without a block
    std::atomic<unsigned int> m_longestBody = 64 * 1024 * 1024;
    std::unique_ptr<NotificationQueue> m_queue NY_GUARDED_BY(this);  // null without a receiver
};
