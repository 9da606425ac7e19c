// CentralTables: what the central server knows, under one lock.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/central/Notifications.h"
#include "apps/central/Openers.h"
#include "apps/central/PortPool.h"
#include "apps/central/TableLimits.h"
#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"

// Every public function takes the lock for as long as it runs, so that any thread may call any of
// them. Tables go out in their archived form, made under the lock.
//
// Who caused a change is named by the session number. A session that has registered a user hears of
// the changes of all others; one that has not may ask for the same things and hears nothing.
// Notifications are handed over under the lock, so that they go out in the order of the changes.
class CentralTables {
  public:
    // `notifier` must outlive the tables.
    CentralTables(const std::vector<LONG>& ports, Notifier& notifier,
                  const TableLimits& limits = {});

    // Enters a session whose client is at `address` (network order). Returns its number, which no
    // other session has had.
    LONG beginSession(unsigned long address);
    // Lets go of all that the session holds: locks, connections, user and ports, in this order. The
    // others are told of each; for want of memory of fewer, and all is let go nevertheless.
    void endSession(LONG session);

    // Gives the user the session's number and a notification port and enters it. Returns the user
    // so completed; a user that the session registered before is replaced and keeps its port.
    // Nothing, with nothing changed, when a text is too long, there is no port left or no such
    // session.
    std::optional<NySeUser> registerUser(const NySeUser& user, LONG session);
    // False when the session has registered no user or the name is too long.
    bool renameUser(LONG session, const CString& name);
    // Another port for the session's listener, which replaces that of its user. The ports that it
    // was given before stay reserved, since it had a reason not to use them. -1, with nothing
    // changed, when there is none left, the session has as many as it may or there is no such
    // session.
    LONG anotherPort(LONG session);
    // The table of users; a copy.
    NySeUserPtrArray users() const;

    // As NySeLockArray::addLock. False, with nothing changed, when that or a limit refuses it or
    // there is no such session.
    bool lock(LONG session, const CString& name, unsigned int mode);
    // Releases all that the session holds of the lock; it may hold nothing of it.
    void unlock(LONG session, const CString& name);
    // The archived table of the users who hold the lock, each once; nothing when nobody holds it. A
    // holder that has registered no user is left out.
    std::optional<std::string> lockHolders(const CString& name) const;
    // The archived table of locks.
    std::string locks() const;

    // As NySeConnectionArray::openConnection. The id; -1, with nothing changed, when a limit
    // refuses it or there is no such session.
    LONG openConnection(LONG session, const CString& name);
    // Closes the connection once, if the session has it open.
    void closeConnection(LONG session, LONG id);
    // The archived table of the users who have the connection open, which may be empty.
    std::string connectionOpeners(LONG id) const;
    // The archived table of connections.
    std::string connections() const;

    // Hand `object`, the bytes of one, to the listeners of the users who have the connection open,
    // of the user of session `receiver`, or of all users: never to the sender's.
    void sendToOpeners(LONG sender, LONG connection, const std::string& object);
    void sendToUser(LONG sender, LONG receiver, const std::string& object);
    void sendToAll(LONG sender, const std::string& object);

    // What coherenceFaults finds.
    std::vector<std::string> faults() const;

  private:
    struct Session {
        unsigned long address;
        std::vector<LONG> ports;  // the last one is in use
        size_t locks = 0;         // different ones that it holds
        size_t opens = 0;         // that it has not closed yet
    };

    Session* findSession(LONG number);
    LONG takePort(Session& session);
    bool isTooLong(const CString& text) const;
    bool hasTooLongText(const NySeUser& user) const;
    void listenTo(LONG session, const Session& about);
    void enterUser(const NySeUser& user);
    void removeUser(const NySeUser* user);
    bool mayBeGranted(const NySeLock* lock, LONG session) const;
    void releaseLock(INT_PTR index, LONG session);
    void releaseLocksOf(LONG session);
    void closeOnce(LONG session, LONG id);
    void closeAllOf(LONG session);
    std::string archivedUsersOf(const std::set<LONG>& sessions) const;

    // To all users but that of `causer`.
    void announce(Notification number, const CObject& object, LONG causer);
    // The same for what must go on when somebody cannot be told.
    void announceIfPossible(Notification number, const CObject& object, LONG causer);
    std::vector<LONG> usersBut(LONG session) const;
    void send(Notification number, const std::string& object, const std::vector<LONG>& receivers);

    mutable std::mutex m_lock;
    Notifier& m_notifier;
    const TableLimits m_limits;
    PortPool m_ports;
    std::map<LONG, Session> m_sessions;
    mutable NySeUserPtrArray m_users;  // addFromSessionArray takes it as one that it may change
    NySeConnectionArray m_connections;
    Openers m_openers;
    NySeLockArray m_locks;
    LONG m_lastSessionNumber = 0;
};
