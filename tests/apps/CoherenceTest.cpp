#include "apps/central/Coherence.h"

#include <gtest/gtest.h>

namespace {

class Coherence : public ::testing::Test {
  protected:
    using Faults = std::vector<std::string>;

    void addUser(const char* name, LONG session, LONG port) {
        auto* user = new NySeUser;
        user->setStrUserName(name);
        user->setSessionNumber(session);
        user->setPort(port);
        users.add(user);
    }

    static NySeUser ofSession(LONG session) {
        NySeUser user;
        user.setSessionNumber(session);
        return user;
    }

    Faults faults() { return coherenceFaults({sessions, users, connections, openers, locks}); }

    std::set<LONG> sessions{1, 2};
    NySeUserPtrArray users;
    NySeConnectionArray connections;
    Openers openers;
    NySeLockArray locks;
};

TEST_F(Coherence, TablesThatAgreeHaveNoFault) {
    EXPECT_EQ(Faults{}, faults());
    addUser("Anna", 1, 101);
    addUser("Bob", 2, 102);
    for (const LONG session : {1, 2, 2}) openers.open(connections.openConnection("A"), session);
    locks.addLock("part", ofSession(2), 1);
    EXPECT_EQ(Faults{}, faults());
}

TEST_F(Coherence, UsersOfSessionsThatLeftAreFound) {
    addUser("Anna", 3, 101);
    EXPECT_EQ(Faults{"user Anna belongs to session 3, which has left"}, faults());
}

TEST_F(Coherence, SharedSessionsAndPortsAreFound) {
    addUser("Anna", 1, 101);
    addUser("Bob", 1, 101);
    EXPECT_EQ((Faults{"user Bob shares session 1", "user Bob shares port 101"}), faults());
}

TEST_F(Coherence, WrongCountsAreFound) {
    openers.open(connections.openConnection("A"), 1);
    connections.openConnection("A");
    EXPECT_EQ(Faults{"connection 0 counts 2 opens, its openers 1"}, faults());
}

TEST_F(Coherence, OpenersOfNothingAndOfSessionsThatLeftAreFound) {
    openers.open(5, 3);
    EXPECT_EQ((Faults{"connection 5 has openers and does not exist",
                      "connection 5 belongs to session 3, which has left"}),
              faults());
}

TEST_F(Coherence, LocksWithoutHoldersOrOfSessionsThatLeftAreFound) {
    locks.addLock("part", ofSession(3), 1);
    locks.addLock("unheld", ofSession(1), 1);
    locks[1]->removeUser(ofSession(1));
    EXPECT_EQ(
        (Faults{"lock part belongs to session 3, which has left", "lock unheld has no holder"}),
        faults());
}

}  // namespace
