// CentralTables: what the central server knows, under one lock.
#pragma once

#include <mutex>

#include "NyServer/records/NySeUserPtrArray.h"

// Every public function takes the lock for as long as it runs, so that any thread may call any of
// them. Records go in and out as copies.
class CentralTables {
  public:
    // Gives the user a session number and a notification port and enters it. Returns the user so
    // completed; a user that was registered under the same session before is replaced.
    NySeUser registerUser(const NySeUser& user, LONG sessionNumber);

    // A number that no other session has had.
    LONG newSessionNumber();

    // Forgets all that the session holds.
    void endSession(LONG sessionNumber);

    // A copy of the table of users.
    NySeUserPtrArray users() const;

  private:
    LONG freePort() const;
    void removeUser(LONG sessionNumber);

    mutable std::mutex m_lock;
    NySeUserPtrArray m_users;
    LONG m_lastSessionNumber = 0;
};
