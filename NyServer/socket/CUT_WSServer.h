#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "NyServer/base/port/Port.h"
#include "NyServer/detail/ThreadAnnotations.h"
#include "NyServer/NyServerApi.h"

class CUT_WSThread;
class RundownProtection;

// A TCP server. It listens on one port, accepts on a thread of its own, and gives each connection a
// thread and a worker. A derived class supplies the workers.
//
// Threads: one thread starts, stops and destroys the server. OnCanAccept is called on the accepting
// thread. CreateInstance, the worker's handler and ReleaseInstance are called on the connection's
// thread; many such threads run at the same time. The list of workers and the connection count are
// changed under ThreadListLock, which is never held while a handler runs. The accessors read
// without it.
//
// Ownership: the derived class owns the workers, from CreateInstance to ReleaseInstance. The server
// owns the sockets.
//
// Destruction: a connection's thread removes its worker from the list, which lowers the connection
// count, and then calls ReleaseInstance. So a count of 0 does not mean that no thread is inside the
// derived class, and a connection may be accepted at any moment. The destructor of a derived class
// that accepts connections must end in one of two ways, because its virtual functions are not
// available after it. Either it repeats RunDownIfIdle, with a Sleep in between, until that
// returns true; this waits for all workers and is necessary when workers use their server. Or it
// calls RunDown, which lets handlers continue to run.
//
// The destructor of this class stops accepting and does not wait for running handlers.
//
// The order of the virtual functions is part of the binary interface: do not change it.
//
// Functions that are said to return a result code return one of SocketCodes.h, passed through
// OnError.
class NYSERVER_API NY_LOCK_TYPE("ThreadListLock") CUT_WSServer {
  public:
    CUT_WSServer();
    virtual ~CUT_WSServer();
    CUT_WSServer(const CUT_WSServer&) = delete;
    CUT_WSServer& operator=(const CUT_WSServer&) = delete;

    // Binds and listens. Closes the listening socket of an earlier call first. `address` is in
    // network order, 0 for all interfaces; `family` is stored in the bound address only, since the
    // socket is always IPv4. Returns UTE_SUCCESS, UTE_ERROR (Winsock does not start, or the server
    // accepts already: then nothing is changed), UTE_SOCK_CREATE_FAILED, UTE_SOCK_BIND_FAILED or
    // UTE_SOCK_LISTEN_ERROR. After a failure the call may be repeated with another port. Each call
    // starts Winsock once more; each StopAccept undoes that of one call.
    virtual int ConnectToPort(unsigned short port, int queueSize, short family,
                              unsigned long address);

    // Starts the accept thread, which ends at once if there is no listening socket. Returns
    // UTE_SUCCESS, or UTE_ERROR if it was started before or cannot be created.
    int StartAccept();

    // Stops accepting and closes the listening socket. Connects to the own port to wake the
    // accept thread, and waits for it. If that connection fails, the socket is closed first, which
    // ends the thread too; one that still runs then is terminated on Windows, and on Linux ends
    // after its OnCanAccept without using the server. Takes at most 30 s. Workers continue to run.
    // Always returns 0.
    int StopAccept();

    // Connects a socket to `port` of the dotted `address` and closes it. Failures are reported to
    // OnStatus. Returns UTE_SUCCESS, UTE_SOCK_CREATE_FAILED or UTE_SOCK_CONNECT_FAILED.
    int TempConnect(unsigned int port, char* address);

    // Sets the maximum number of workers. Connections above it are served by OnMaxConnect. Returns
    // `n`, or -1 with the maximum unchanged unless 1 <= n <= 32000.
    int SetMaxConnections(int n);
    NYSERVER_INLINE int GetMaxConnections() const {
        return m_maxConnections.load(std::memory_order_relaxed);
    }

    // Returns the number of workers in the list.
    NYSERVER_INLINE int GetNumConnections() const { return m_connectionCount; }

    // Sets the port that StopAccept connects to; the bound port does not change. Returns
    // UTE_SUCCESS.
    int SetPort(unsigned int port);
    NYSERVER_INLINE unsigned int GetPort() const { return m_port.load(std::memory_order_relaxed); }

    // Returns the port that the listening socket is bound to, which is the assigned one if port 0
    // was requested. Returns 0 if it is not bound.
    unsigned int GetBoundPort() const;

    // Sets the protocol of the listening socket that ConnectToPort creates next. Returns
    // `protocol`.
    NYSERVER_INLINE int SetProtocol(int protocol) {
        m_protocol.store(protocol, std::memory_order_relaxed);
        return protocol;
    }
    NYSERVER_INLINE int GetProtocol() const { return m_protocol.load(std::memory_order_relaxed); }

    // A flag that handlers poll: not 0 when the server is being destroyed. Set to 1 by the
    // destructor.
    NYSERVER_INLINE void SetShutDownFlag(int flag) {
        m_shutDownFlag.store(flag, std::memory_order_relaxed);
    }
    NYSERVER_INLINE int GetShutDownFlag() const {
        return m_shutDownFlag.load(std::memory_order_relaxed);
    }

  protected:
    // Returns true from a successful StartAccept until StopAccept.
    NYSERVER_INLINE bool IsAccepting() const { return m_accepting == 1; }

    // For derived classes; never called by this class. The base returns 0.
    virtual int Pause();
    virtual int Resume();

    // Returns a new worker. If it returns null or throws, the connection is closed.
    virtual CUT_WSThread* CreateInstance() = 0;

    // Destroys a worker whose handler has returned.
    virtual void ReleaseInstance(CUT_WSThread* worker) = 0;

    // Returns whether the peer at the dotted `address` may connect. 0, or an exception, closes the
    // connection without a reply. The base returns 1.
    virtual long OnCanAccept(const char* address);

    // Receives the texts of failures that have no result code. The base returns 0.
    virtual int OnStatus(const WCHAR* text);

    // Receives each result code; its own result is what the caller gets. The base returns `code`.
    virtual int OnError(int code);

    // One worker in the list.
    struct ThreadListEntry {
        CUT_WSThread* worker;
        DWORD threadId;
        SOCKET socket;
        ThreadListEntry* previous;
        ThreadListEntry* next;
    };

    // Holds the lock of the list and of the connection count. A thread may lock it recursively.
    class NYSERVER_API NY_SCOPED_LOCK ThreadListLock {
      public:
        explicit ThreadListLock(CUT_WSServer& server) NY_ACQUIRES(server);
        ~ThreadListLock() NY_RELEASES();
        ThreadListLock(const ThreadListLock&) = delete;
        ThreadListLock& operator=(const ThreadListLock&) = delete;

      private:
        port::RecursiveMutex& m_mutex;
    };

    // Returns the entry of the newest worker, or null. REQUIRES: the caller holds a ThreadListLock
    // for as long as it uses the entries.
    NYSERVER_INLINE const ThreadListEntry* ThreadListFirst() const NY_REQUIRES(this) {
        return m_threadList;
    }

    // Inserts a worker at the front. Returns 1, or 0 if out of memory.
    int ThreadListAdd(CUT_WSThread* worker, DWORD threadId, SOCKET socket);

    // Removes the newest entry of the thread, if there is one. Always returns 1.
    int ThreadListRemove(DWORD threadId);

    // Returns the number of entries, counted in a loop over the list.
    int ThreadListGetLength();

    // Removes all entries, and for each worker sets its abort flag and calls its OnError(0) under
    // the lock. Their handlers continue to run. Returns the number of entries removed.
    int ThreadListKill();

    // Calls SuspendThread or ResumeThread with the thread identifier of each entry in the place of
    // a handle; on other platforms, no function. Returns the number of entries.
    int ThreadListSuspend();
    int ThreadListResume();

    // For destructors of derived classes. Returns true if no worker is left and no thread is inside
    // a virtual function of this server. From then on no thread of this server calls one, and new
    // connections are closed. Otherwise returns false and changes nothing.
    bool RunDownIfIdle();

    // Closes new connections from now on, and waits for the threads that are inside a virtual
    // function of this server. Handlers continue to run. A worker whose handler returns later is
    // deleted instead of given to ReleaseInstance: REQUIRES: it may be destroyed by delete.
    void RunDown();

  private:
    class AcceptThread;
    friend class ServerConnection;

    bool StartAcceptThread();
    int WakeAcceptThread(ULONGLONG deadline);
    int ConnectAndClose(unsigned int port, const char* address, ULONGLONG deadline,
                        const std::function<bool()>& isCancelled);
    void EndAcceptThread(ULONGLONG deadline);
    void CloseListenSocket();
    static void CancelBlockingCall();
    int FreeThreadList();
    template <class Action>
    int ThreadListForEach(Action action);

    WSADATA m_winsockData{};
    sockaddr_in m_serverAddress{};
    std::atomic<SOCKET> m_listenSocket = INVALID_SOCKET;
    ThreadListEntry* m_threadList NY_GUARDED_BY(this) = nullptr;
    // Written under the lock of m_rundown, like m_acceptThread; read without it, too.
    std::atomic<uintptr_t> m_acceptThreadHandle = port::kNoThread;
    std::atomic<int> m_accepting = 0;
    std::atomic<int> m_stopRequested = 0;
    // The settings synchronise nothing else: accessed relaxed.
    std::atomic<int> m_maxConnections = 30000;
    std::atomic<int> m_connectionCount = 0;
    std::atomic<int> m_protocol = 0;
    std::atomic<unsigned int> m_port = static_cast<unsigned int>(-1);
    std::atomic<int> m_shutDownFlag = 0;
    int m_startUpCount = 0;
    port::RecursiveMutex m_threadListLock;

    std::shared_ptr<RundownProtection> m_rundown;
    std::shared_ptr<AcceptThread> m_acceptThread;
};

template <class Action>
int CUT_WSServer::ThreadListForEach(Action action) {
    const ThreadListLock lock(*this);
    int length = 0;
    for (ThreadListEntry* entry = m_threadList; entry; entry = entry->next) {
        action(*entry);
        ++length;
    }
    return length;
}
