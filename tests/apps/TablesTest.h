// The server's tables without a server.
#pragma once

#include <gtest/gtest.h>

#include "apps/central/CentralTables.h"
#include "tests/apps/RecordingNotifier.h"

// Two modes of a lock: the one beside others, and the one that suffers none.
inline constexpr unsigned int kShared = 0x01;
inline constexpr unsigned int kExclusive = 0x18;

class TablesTest : public ::testing::Test {
  protected:
    using Numbers = std::vector<LONG>;

    static NySeUser named(const char* name) {
        NySeUser user;
        user.setStrUserName(name);
        return user;
    }

    LONG begin() { return tables.beginSession(::htonl(INADDR_LOOPBACK)); }

    // A new session with a user. What its joining told is forgotten.
    LONG join(const char* name) {
        const LONG session = begin();
        EXPECT_TRUE(tables.registerUser(named(name), session));
        notifier.told.clear();
        return session;
    }

    template <class Table>
    static std::shared_ptr<Table> read(const std::string& archive) {
        return RecordingNotifier::Told{0, {}, archive}.object<Table>();
    }

    std::shared_ptr<NySeLockArray> locks() { return read<NySeLockArray>(tables.locks()); }
    std::shared_ptr<NySeConnectionArray> connections() {
        return read<NySeConnectionArray>(tables.connections());
    }

    static Numbers sessionsOf(const NySeUserPtrArray& users) {
        Numbers sessions;
        for (INT_PTR i = 0; i < users.GetSize(); ++i)
            sessions.push_back(users[i]->getSessionNumber());
        return sessions;
    }
    static Numbers sessionsOf(const NySeLock& lock) {
        Numbers sessions;
        for (INT_PTR i = 0; i < lock.getHolders().GetSize(); ++i)
            sessions.push_back(lock.getHolders()[i]->getSessionNumber());
        return sessions;
    }

    explicit TablesTest(const TableLimits& bounds = {}) : limits(bounds) {}

    const TableLimits limits;
    RecordingNotifier notifier;
    CentralTables tables{{101, 102, 103}, notifier, limits};
};
