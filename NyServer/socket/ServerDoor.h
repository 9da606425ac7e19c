#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"

// Knows which threads are inside a server's own code, and lets none in any more once the server
// goes. The server and all its threads share one door; it is what a thread may still touch when the
// server is gone.
//
// A connection's thread is a resident from admit to moveOut. It is inside, on a visit, while it has
// the worker made or released, and not while the worker's handler runs. The accepting thread is on
// a visit while a peer is judged; its other steps touch the server under lock(). Every function may
// be called by any thread.
class ServerDoor {
  public:
    enum class State {
        Open,
        Shut,  // no virtual function of the server is called any more; its base may be used
        Gone,  // the server is not touched at all
    };

    // A thread's stay inside. Owned by the thread, and known to the door from entering to leaving.
    class Visit {
        friend class ServerDoor;
        bool m_isJudging = false;
        DWORD m_thread = 0;
        Visit* m_next = nullptr;
    };

    // A mutex of the kernel, because the thread that waits for it or holds it may be ended by force
    // and the lock must stay usable. The owner may lock again.
    class Lock {
      public:
        explicit Lock(const ServerDoor& door) : m_mutex(door.m_mutex.get()) {
            ::WaitForSingleObject(m_mutex, INFINITE);
        }
        ~Lock() { ::ReleaseMutex(m_mutex); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        HANDLE m_mutex;
    };

    // Throws std::bad_alloc when there is no mutex to be had.
    ServerDoor();

    // A new resident begins a visit, to have its worker made. False when the door is not open: it
    // is no resident then.
    [[nodiscard]] bool admit(Visit& visit);

    // A resident begins another visit. The door's state at that moment; when Gone there is no
    // visit.
    [[nodiscard]] State comeBack(Visit& visit);

    // The accepting thread begins a visit, to have a peer judged. False when the door is not open.
    [[nodiscard]] bool enterToJudge(Visit& visit);

    // Ends a visit; without effect when there is none.
    void leave(Visit& visit);

    // The thread is no resident any more.
    void moveOut();

    // Shuts the door if there is no resident and nobody but the calling thread inside, in one step.
    // False, and nothing changed, otherwise.
    [[nodiscard]] bool shutIfIdle();

    // Shuts the door; does not wait.
    void shut();

    // Waits until nobody but the calling thread is inside.
    void awaitEmpty() const;

    // Marks the server as gone, then waits until no resident but the calling one is inside.
    void forgetServer();

    // REQUIRES: locked by the calling thread, for as long as the answer is relied upon.
    bool isGone() const { return m_state == State::Gone; }

  private:
    enum class Whom { Residents, Everybody };

    void begin(Visit& visit, bool isJudging);
    bool hasOthersInside(Whom whom) const;
    void awaitOthers(Whom whom) const;

    UniqueKernelHandle m_mutex;
    State m_state = State::Open;
    int m_residents = 0;
    Visit* m_visits = nullptr;
};
