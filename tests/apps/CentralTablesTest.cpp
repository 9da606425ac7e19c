#include "apps/central/CentralTables.h"

#include <gtest/gtest.h>

namespace {

NySeUser named(const char* name) {
    NySeUser user;
    user.setStrUserName(name);
    return user;
}

TEST(CentralTables, SessionNumbersAreNeverGivenTwice) {
    CentralTables tables;
    const LONG first = tables.newSessionNumber();
    tables.endSession(first);
    EXPECT_NE(first, tables.newSessionNumber());
}

TEST(CentralTables, ARegisteredUserIsCompletedAndListed) {
    CentralTables tables;
    const NySeUser anna = tables.registerUser(named("Anna"), 5);
    EXPECT_EQ(5, anna.getSessionNumber());
    EXPECT_GT(anna.getPort(), 0);
    const NySeUserPtrArray users = tables.users();
    ASSERT_EQ(1, users.GetSize());
    EXPECT_EQ(5, users[0]->getSessionNumber());
    EXPECT_EQ(anna.getPort(), users[0]->getPort());
}

TEST(CentralTables, TwoUsersNeverShareAPort) {
    CentralTables tables;
    const LONG first = tables.registerUser(named("a"), 1).getPort();
    const LONG second = tables.registerUser(named("b"), 2).getPort();
    EXPECT_NE(first, second);
}

TEST(CentralTables, ThePortOfAUserWhoLeftIsGivenAgain) {
    CentralTables tables;
    const LONG port = tables.registerUser(named("a"), 1).getPort();
    tables.registerUser(named("b"), 2);
    tables.endSession(1);
    EXPECT_EQ(port, tables.registerUser(named("c"), 3).getPort());
}

TEST(CentralTables, RegisteringAgainReplacesTheUserOfTheSession) {
    CentralTables tables;
    tables.registerUser(named("before"), 1);
    tables.registerUser(named("after"), 1);
    const NySeUserPtrArray users = tables.users();
    ASSERT_EQ(1, users.GetSize());
    EXPECT_EQ(CString("after"), users[0]->getStrUserName());
}

TEST(CentralTables, EndingAnUnknownSessionChangesNothing) {
    CentralTables tables;
    tables.registerUser(named("a"), 1);
    tables.endSession(2);
    EXPECT_EQ(1, tables.users().GetSize());
}

}  // namespace
