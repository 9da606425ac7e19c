#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"
#include "NyServer/ThreadAnnotations.h"

class CUT_WSThread;
class RundownProtection;

// Listens on one TCP port, accepts on a thread of its own and gives each connection a thread and a
// worker. A derived server supplies the workers.
//
// Threads: one thread starts, stops and destroys the server. OnCanAccept runs on the accepting
// thread; CreateInstance, the worker's handler and ReleaseInstance run on the connection's own
// thread, of which there are many at a time. The list of workers and the connection count are
// changed under one lock, which is never held while a handler runs; the accessors read without it.
//
// Destruction: a connection's thread first takes its worker out of the list, which lowers the
// connection count, and then calls ReleaseInstance. A count of 0 therefore does not mean that no
// thread is inside the derived server's code, and a connection may be accepted at any moment. The
// virtual functions of a derived server go with its destructor; so the author of a derived server
// that accepts connections ends its destructor in one of two ways. It repeats CloseDoorIfIdle, with
// a Sleep in between, until that is true, and so waits for all workers; this is needed when workers
// use their server. Or it calls CloseDoor, which lets workers run on; see there for what becomes of
// them.
//
// The base destructor stops accepting and does not wait for handlers that still run.
//
// The order of the virtual functions is part of the binary interface.
class NYSERVER_API NY_LOCK_TYPE("ThreadListLock") CUT_WSServer {
  public:
    CUT_WSServer();
    virtual ~CUT_WSServer();
    CUT_WSServer(const CUT_WSServer&) = delete;
    CUT_WSServer& operator=(const CUT_WSServer&) = delete;

    // Binds and listens. `address` is in network order, 0 for any interface; `family` goes into the
    // bound address only, the socket is always IPv4. Through OnError: 0, 1 no Winsock, 17 no
    // socket, 18 bind failed, 23 listen failed. The socket of an earlier call is closed first.
    // After a failure the server may be given another port; StopAccept balances one call. From
    // StartAccept until StopAccept it gives 1 and changes nothing.
    virtual int ConnectToPort(unsigned short port, int queueSize, short family,
                              unsigned long address);

    // Starts the accepting thread. Through OnError: 0, or 1 when it was started before or cannot
    // be.
    int StartAccept();

    // Stops accepting and closes the listening socket: a connection to the own port wakes the
    // accepting thread, which is waited for; if that connection fails the thread is ended by force.
    // All of that takes at most 30 s. Workers run on. Always 0.
    int StopAccept();

    // Connects a throw-away socket to the dotted `address` and closes it; what fails is told to
    // OnStatus. Through OnError: 0, 17 no socket, 19 the connect failed.
    int TempConnect(unsigned int port, char* address);

    // Connections beyond `n` workers get OnMaxConnect. `n`, or -1 and nothing changed unless it is
    // 1 to 32000.
    int SetMaxConnections(int n);
    NYSERVER_INLINE int GetMaxConnections() const {
        return m_maxConnections.load(std::memory_order_relaxed);
    }

    // The workers in the list.
    NYSERVER_INLINE int GetNumConnections() const { return m_connectionCount; }

    // Changes what StopAccept connects to, not what is bound. OnError(0).
    int SetPort(unsigned int port);
    NYSERVER_INLINE unsigned int GetPort() const { return m_port.load(std::memory_order_relaxed); }

    // The port that the listening socket is bound to, which answers a request for port 0; 0 when it
    // is not bound.
    unsigned int GetBoundPort() const;

    // For the listening socket that ConnectToPort makes next. The value.
    NYSERVER_INLINE int SetProtocol(int protocol) {
        m_protocol.store(protocol, std::memory_order_relaxed);
        return protocol;
    }
    NYSERVER_INLINE int GetProtocol() const { return m_protocol.load(std::memory_order_relaxed); }

    // For handlers to watch: 1 when the server goes. The destructor sets it.
    NYSERVER_INLINE void SetShutDownFlag(int flag) {
        m_shutDownFlag.store(flag, std::memory_order_relaxed);
    }
    NYSERVER_INLINE int GetShutDownFlag() const {
        return m_shutDownFlag.load(std::memory_order_relaxed);
    }

  protected:
    // Whether StartAccept was called, and StopAccept not since.
    NYSERVER_INLINE bool IsAccepting() const { return m_accepting == 1; }

    // For derived servers that can pause; nothing calls them. The base returns 0.
    virtual int Pause();
    virtual int Resume();

    // A new worker, or null: the connection is closed then.
    virtual CUT_WSThread* CreateInstance() = 0;

    // Disposes of a worker whose handler has returned.
    virtual void ReleaseInstance(CUT_WSThread* worker) = 0;

    // Whether the peer at this dotted address may connect; 0 closes the connection without a reply.
    // The base returns 1.
    virtual long OnCanAccept(const char* address);

    // Told the texts of failures that have no result code. The base returns 0.
    virtual int OnStatus(const wchar_t* text);

    // Every result code passes through here; the base returns `code`.
    virtual int OnError(int code);

    // One live worker.
    struct ThreadListEntry {
        CUT_WSThread* worker;
        DWORD threadId;
        SOCKET socket;
        ThreadListEntry* previous;
        ThreadListEntry* next;
    };

    // Holds the lock of the list and of the connection count. The owner may lock again.
    class NYSERVER_API NY_SCOPED_LOCK ThreadListLock {
      public:
        explicit ThreadListLock(CUT_WSServer& server) NY_ACQUIRES(server);
        ~ThreadListLock() NY_RELEASES();
        ThreadListLock(const ThreadListLock&) = delete;
        ThreadListLock& operator=(const ThreadListLock&) = delete;

      private:
        CRITICAL_SECTION& m_section;
    };

    // The newest worker's entry, or null. REQUIRES: a ThreadListLock for as long as the entries are
    // used.
    NYSERVER_INLINE const ThreadListEntry* ThreadListFirst() const NY_REQUIRES(this) {
        return m_threadList;
    }

    // Puts a worker in front. 1, or 0 when there is no memory for it.
    int ThreadListAdd(CUT_WSThread* worker, DWORD threadId, SOCKET socket);

    // Takes the newest entry of the thread out, if there is one. Always 1.
    int ThreadListRemove(DWORD threadId);

    // The entries, counted by a walk.
    int ThreadListGetLength();

    // Empties the list, setting each worker's abort flag and calling its OnError(0) under the lock.
    // The handlers run on. The number of entries there were.
    int ThreadListKill();

    // Gives each entry's thread identifier, as it stands, to SuspendThread or ResumeThread. The
    // number of entries.
    int ThreadListSuspend();
    int ThreadListResume();

    // For destructors of derived servers. True when no worker is left and no thread is inside this
    // server's virtual functions; from then on none of them is called by a thread of this server
    // and new connections are closed. False, with nothing changed, otherwise.
    bool CloseDoorIfIdle();

    // The same at once: new connections are closed, and threads that are inside the virtual
    // functions are waited for. Handlers run on; a worker whose handler returns later is deleted
    // instead of given to ReleaseInstance, and must be able to bear that.
    void CloseDoor();

  private:
    static constexpr uintptr_t kNoThread = static_cast<uintptr_t>(-1);
    class AcceptThread;
    friend class ServerConnection;

    bool StartAcceptThread();
    int WakeAcceptThread(ULONGLONG deadline);
    int ConnectAndClose(unsigned int port, const char* address, ULONGLONG deadline,
                        const std::function<bool()>& isPointless);
    void EndAcceptThread(ULONGLONG deadline);
    void CloseListenSocket();
    int FreeThreadList();
    template <class Action>
    int ThreadListForEach(Action action);

    WSADATA m_winsockData{};
    sockaddr_in m_serverAddress{};
    std::atomic<SOCKET> m_listenSocket = INVALID_SOCKET;
    ThreadListEntry* m_threadList NY_GUARDED_BY(this) = nullptr;
    std::atomic<uintptr_t> m_acceptThreadHandle = kNoThread;
    std::atomic<int> m_accepting = 0;
    std::atomic<int> m_stopRequested = 0;
    // The settings order nothing else: read and written relaxed.
    std::atomic<int> m_maxConnections = 30000;
    std::atomic<int> m_connectionCount = 0;
    std::atomic<int> m_protocol = 0;
    std::atomic<unsigned int> m_port = static_cast<unsigned int>(-1);
    std::atomic<int> m_shutDownFlag = 0;
    int m_startUpCount = 0;
    CRITICAL_SECTION m_threadListLock;

    std::shared_ptr<RundownProtection> m_rundown;
    std::shared_ptr<AcceptThread> m_acceptThread;
};
