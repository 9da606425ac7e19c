#pragma once

#include "NyServer/base/port/Port.h"
#include "NyServer/detail/ThreadAnnotations.h"

// Run-down protection of a server: tracks which threads are inside the server's code, and admits no
// more while the server is being destroyed. The server and its threads share one object, which
// outlives the server.
//
// The thread of a connection is attached from tryAttach to detach. It is inside while the worker is
// created or released, but not while the worker's handler runs. The accept thread is inside
// while OnCanAccept runs; in its other steps it holds the lock. Any thread may call these
// functions.
class NY_LOCK_TYPE("run-down protection") RundownProtection {
  public:
    enum class State {
        Open,
        Closed,     // no virtual function of the server is called any more; its base may be used
        Destroyed,  // the server is not touched at all
    };

    // Represents a thread that is inside. Owned by the thread; linked from entering to leaving.
    class Entry {
        friend class RundownProtection;
        bool m_isAcceptor = false;
        DWORD m_thread = 0;
        Entry* m_next = nullptr;
    };

    // Holds the lock, which is robust, because a thread that waits for it or holds it may be
    // terminated. A thread may lock it recursively.
    class NY_SCOPED_LOCK Lock {
      public:
        explicit Lock(const RundownProtection& rundown) NY_ACQUIRES(rundown)
            : m_mutex(rundown.m_mutex) {
            m_mutex.lock();
        }
        ~Lock() NY_RELEASES() { m_mutex.unlock(); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        const port::RobustMutex& m_mutex;
    };

    // Attaches the thread of a connection and enters it, to create the worker. Returns false and
    // changes nothing unless the state is Open.
    [[nodiscard]] bool tryAttach(Entry& entry);

    // Enters an attached thread again. Returns the state; if it is Destroyed, the thread is not
    // entered.
    [[nodiscard]] State reenter(Entry& entry);

    // Enters the accept thread, to call OnCanAccept. Returns false unless the state is Open.
    [[nodiscard]] bool tryEnter(Entry& entry);

    // No effect if the entry is not entered.
    void leave(Entry& entry);

    // REQUIRES: the calling thread is attached.
    void detach();

    // If no thread is attached and none but the calling one is inside, closes and returns true, as
    // one step. Otherwise returns false and changes nothing.
    [[nodiscard]] bool closeIfIdle();

    // Closes without waiting.
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

    port::RobustMutex m_mutex;  // throws std::bad_alloc if it cannot be created
    State m_state NY_GUARDED_BY(this) = State::Open;
    int m_attached NY_GUARDED_BY(this) = 0;
    Entry* m_entries NY_GUARDED_BY(this) = nullptr;
};
