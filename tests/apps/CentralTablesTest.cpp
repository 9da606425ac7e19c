// Sessions, users and ports.
#include <stdexcept>

#include "tests/apps/TablesTest.h"

namespace {

using CentralTablesUsers = TablesTest;

TEST_F(CentralTablesUsers, SessionNumbersAreNeverGivenTwice) {
    const LONG first = begin();
    tables.endSession(first);
    EXPECT_NE(first, begin());
}

TEST_F(CentralTablesUsers, ARegisteredUserIsCompletedAndListed) {
    const LONG session = begin();
    const auto anna = tables.registerUser(named("Anna"), session);
    ASSERT_TRUE(anna);
    EXPECT_EQ(session, anna->getSessionNumber());
    EXPECT_EQ(101, anna->getPort());
    const NySeUserPtrArray users = tables.users();
    ASSERT_EQ(1, users.GetSize());
    EXPECT_EQ(session, users[0]->getSessionNumber());
    EXPECT_EQ(101, users[0]->getPort());
}

TEST_F(CentralTablesUsers, AListenerIsExpectedAtTheClientsAddressAndTheUsersPort) {
    const LONG session = tables.beginSession(::inet_addr("127.0.0.9"));
    tables.registerUser(named("Anna"), session);
    ASSERT_EQ(1u, notifier.listeners.count(session));
    EXPECT_EQ(::inet_addr("127.0.0.9"), notifier.listeners[session].sin_addr.s_addr);
    EXPECT_EQ(101, ::ntohs(notifier.listeners[session].sin_port));
}

TEST_F(CentralTablesUsers, TwoUsersNeverShareAPort) {
    EXPECT_EQ(101, tables.registerUser(named("a"), begin())->getPort());
    EXPECT_EQ(102, tables.registerUser(named("b"), begin())->getPort());
}

TEST_F(CentralTablesUsers, ThePortsOfASessionThatLeftAreGivenAgain) {
    const LONG first = join("a");
    EXPECT_EQ(102, tables.anotherPort(first));
    join("b");
    tables.endSession(first);
    EXPECT_EQ(101, tables.registerUser(named("c"), begin())->getPort());
    EXPECT_EQ(102, tables.registerUser(named("d"), begin())->getPort());
}

TEST_F(CentralTablesUsers, ThereIsNoUserWithoutAPort) {
    for (const char* name : {"a", "b", "c"}) join(name);
    const LONG late = begin();
    EXPECT_FALSE(tables.registerUser(named("d"), late));
    EXPECT_EQ(3, tables.users().GetSize());
    EXPECT_EQ(-1, tables.anotherPort(late));
    EXPECT_TRUE(notifier.told.empty());
}

NySeUser userNamed(const char* name) {
    NySeUser user;
    user.setStrUserName(name);
    return user;
}

// No thread can be started for another listener.
class RefusingNotifier : public RecordingNotifier {
  public:
    void listen(LONG session, const sockaddr_in& address) override {
        if (isRefusing) throw std::runtime_error("no thread");
        RecordingNotifier::listen(session, address);
    }
    bool isRefusing = false;
};

TEST(CentralTablesWithoutThreads, AUserWhoCouldNotJoinIsNotEnteredAndDoesNotLeave) {
    RefusingNotifier notifier;
    CentralTables tables({101, 102}, notifier);
    tables.registerUser(userNamed("Anna"), tables.beginSession(0));
    notifier.isRefusing = true;
    const LONG late = tables.beginSession(0);
    EXPECT_THROW(tables.registerUser(userNamed("Bob"), late), std::runtime_error);
    EXPECT_EQ(1, tables.users().GetSize());
    tables.endSession(late);
    EXPECT_TRUE(notifier.told.empty());
    notifier.isRefusing = false;
    EXPECT_EQ(102, tables.registerUser(userNamed("Carl"), tables.beginSession(0))->getPort());
}

TEST_F(CentralTablesUsers, AnotherPortReplacesThatOfTheUser) {
    const LONG session = join("a");
    EXPECT_EQ(102, tables.anotherPort(session));
    EXPECT_EQ(103, tables.anotherPort(session));  // and not the first one again
    EXPECT_EQ(103, tables.users()[0]->getPort());
    EXPECT_EQ(103, ::ntohs(notifier.listeners[session].sin_port));
    EXPECT_EQ(-1, tables.anotherPort(session));
    EXPECT_EQ(103, tables.users()[0]->getPort());
}

TEST_F(CentralTablesUsers, APortAskedForBeforeRegisteringIsTheUsers) {
    const LONG session = begin();
    EXPECT_EQ(101, tables.anotherPort(session));
    EXPECT_EQ(102, tables.anotherPort(session));
    EXPECT_EQ(102, tables.registerUser(named("a"), session)->getPort());
}

TEST_F(CentralTablesUsers, ASessionGetsABoundedNumberOfPorts) {
    CentralTables many(portRange(1, 100), notifier);
    const LONG session = many.beginSession(0);
    for (size_t i = 0; i < TableLimits().portsPerSession; ++i)
        EXPECT_EQ(static_cast<LONG>(i) + 1, many.anotherPort(session));
    EXPECT_EQ(-1, many.anotherPort(session));
}

TEST_F(CentralTablesUsers, RegisteringAgainReplacesTheUserAndKeepsItsPort) {
    const LONG session = join("before");
    EXPECT_EQ(101, tables.registerUser(named("after"), session)->getPort());
    const NySeUserPtrArray users = tables.users();
    ASSERT_EQ(1, users.GetSize());
    EXPECT_EQ(CString("after"), users[0]->getStrUserName());
}

TEST_F(CentralTablesUsers, ARenamedUserIsListedUnderTheNewName) {
    const LONG session = join("b");
    join("c");
    EXPECT_TRUE(tables.renameUser(session, "z"));
    const NySeUserPtrArray users = tables.users();
    ASSERT_EQ(2, users.GetSize());
    EXPECT_EQ(CString("c"), users[0]->getStrUserName());
    EXPECT_EQ(CString("z"), users[1]->getStrUserName());
    EXPECT_EQ(session, users[1]->getSessionNumber());
    EXPECT_EQ(101, users[1]->getPort());
}

TEST_F(CentralTablesUsers, OnlyARegisteredUserCanBeRenamed) {
    EXPECT_FALSE(tables.renameUser(begin(), "z"));
    EXPECT_EQ(0, tables.users().GetSize());
}

TEST_F(CentralTablesUsers, ASessionThatIsNotThereGetsNothing) {
    join("a");
    tables.endSession(99);
    EXPECT_EQ(1, tables.users().GetSize());
    EXPECT_FALSE(tables.registerUser(named("b"), 99));
    EXPECT_EQ(-1, tables.anotherPort(99));
}

TEST_F(CentralTablesUsers, JoiningAndLeavingIsToldToTheOthers) {
    const LONG anna = join("Anna");
    const LONG bob = begin();
    tables.registerUser(named("Bob"), bob);
    tables.endSession(bob);
    ASSERT_EQ((Numbers{notifyUserJoined, notifyUserLeft}), notifier.numbers());
    for (const auto& told : notifier.told) {
        EXPECT_EQ(Numbers{anna}, told.sessions);
        ASSERT_NE(nullptr, told.object<NySeUser>());
        EXPECT_EQ(CString("Bob"), told.object<NySeUser>()->getStrUserName());
        EXPECT_EQ(bob, told.object<NySeUser>()->getSessionNumber());
        EXPECT_EQ(102, told.object<NySeUser>()->getPort());
    }
    EXPECT_EQ(0u, notifier.listeners.count(bob));
}

TEST_F(CentralTablesUsers, TheEndOfASessionWithoutAUserIsNotTold) {
    join("Anna");
    tables.endSession(begin());
    EXPECT_TRUE(notifier.told.empty());
}

TEST_F(CentralTablesUsers, DataGoesToTheUsersThatItIsFor) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    const LONG carl = join("Carl");
    tables.sendToAll(anna, "for all");
    tables.sendToUser(anna, carl, "for one");
    ASSERT_EQ((Numbers{notifyDataForAll, notifyUserData}), notifier.numbers());
    EXPECT_EQ((Numbers{bob, carl}), notifier.told[0].sessions);
    EXPECT_EQ("for all", notifier.told[0].body);
    EXPECT_EQ(Numbers{carl}, notifier.told[1].sessions);
    EXPECT_EQ("for one", notifier.told[1].body);
}

TEST_F(CentralTablesUsers, WhatNobodyIsToldIsNotMade) {
    const LONG withoutUser = begin();
    const LONG anna = join("Anna");
    tables.openConnection(withoutUser, "A");
    notifier.told.clear();
    tables.sendToUser(anna, withoutUser, "for one");
    tables.sendToUser(anna, 4711, "for nobody");
    tables.sendToOpeners(anna, 0, "for openers");
    tables.sendToAll(anna, "for all");
    EXPECT_TRUE(notifier.told.empty());
}

TEST_F(CentralTablesUsers, DataForOneselfGoesNowhere) {
    const LONG anna = join("Anna");
    tables.sendToUser(anna, anna, "for myself");
    tables.sendToAll(anna, "for all");
    EXPECT_TRUE(notifier.told.empty());
}

}  // namespace
