#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/ThreadAnnotations.h"

// Run-down protection of a server: knows which threads are inside its code, and lets no more in
// while it is being destroyed. The server and all its threads share one object; it is what a thread
// may still touch after the server is destroyed.
//
// A connection's thread is attached from tryAttach to detach. It is inside while it has the worker
// created or released, and not while the worker's handler runs. The accepting thread is inside
// while OnCanAccept runs; its other steps touch the server under the lock. Every function may be
// called by any thread.
class NY_LOCK_TYPE("run-down protection") RundownProtection {
  public:
    enum class State {
        Open,
        Closed,     // no virtual function of the server is called any more; its base may be used
        Destroyed,  // the server is not touched at all
    };

    // A thread's stay inside. Owned by the thread, and known to the protection from entering to
    // leaving.
    class Entry {
        friend class RundownProtection;
        bool m_isAcceptor = false;
        DWORD m_thread = 0;
        Entry* m_next = nullptr;
    };

    // A mutex of the kernel, because the thread that waits for it or holds it may be ended by force
    // and the lock must stay usable. The owner may lock again.
    class NY_SCOPED_LOCK Lock {
      public:
        explicit Lock(const RundownProtection& rundown) NY_ACQUIRES(rundown)
            : m_mutex(rundown.m_mutex.get()) {
            ::WaitForSingleObject(m_mutex, INFINITE);
        }
        ~Lock() NY_RELEASES() { ::ReleaseMutex(m_mutex); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        HANDLE m_mutex;
    };

    // Throws std::bad_alloc when no mutex can be created.
    RundownProtection();

    // Attaches a connection's thread and enters, to create its worker. False, and nothing changed,
    // unless the state is Open.
    [[nodiscard]] bool tryAttach(Entry& entry);

    // An attached thread enters again. Returns the state; nothing is entered when it is Destroyed.
    [[nodiscard]] State reenter(Entry& entry);

    // The accepting thread enters, to call OnCanAccept. False unless the state is Open.
    [[nodiscard]] bool tryEnter(Entry& entry);

    // Without effect when nothing was entered.
    void leave(Entry& entry);

    // REQUIRES: the calling thread is attached.
    void detach();

    // Closes if no thread is attached and none but the calling one is inside, in one step. False,
    // and nothing changed, otherwise.
    [[nodiscard]] bool closeIfIdle();

    // Does not wait.
    void close();

    // Waits until no thread but the calling one is inside.
    void waitUntilEmpty() const;

    // Sets the state to Destroyed, then waits until no attached thread but the calling one is
    // inside.
    void markDestroyed();

    // The answer holds as long as the lock is held.
    bool isDestroyed() const NY_REQUIRES(this) { return m_state == State::Destroyed; }

  private:
    enum class Threads { Attached, All };

    void enter(Entry& entry, bool isAcceptor) NY_REQUIRES(this);
    bool hasOthersInside(Threads threads) const;
    void waitForOthers(Threads threads) const;

    UniqueKernelHandle m_mutex;
    State m_state NY_GUARDED_BY(this) = State::Open;
    int m_attached NY_GUARDED_BY(this) = 0;
    Entry* m_entries NY_GUARDED_BY(this) = nullptr;
};
