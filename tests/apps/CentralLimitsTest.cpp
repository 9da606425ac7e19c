// What one client may have at most, and that it costs the others no more than that.
#include "tests/apps/TablesTest.h"

namespace {

TableLimits few() {
    TableLimits limits;
    limits.locksPerSession = 3;
    limits.grantsPerSession = 2;
    limits.grantsPerLock = 4;
    limits.opensPerSession = 3;
    limits.locksInAll = 5;
    limits.longestText = 10;
    return limits;
}

class CentralLimits : public TablesTest {
  protected:
    CentralLimits() : TablesTest(few()) {}

    static CString text(size_t length, char first = 'x') {
        return CString((first + std::string(length - 1, 'x')).c_str());
    }

    // Exactly as many of the calls succeed.
    template <class Call>
    static void expectGranted(size_t count, Call call) {
        for (size_t i = 0; i < count; ++i) EXPECT_TRUE(call()) << i;
        EXPECT_FALSE(call());
    }

    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
};

TEST_F(CentralLimits, ASessionHoldsABoundedNumberOfLocks) {
    char name = 'a';
    const auto lockAnother = [&] { return tables.lock(anna, CString(name++), kShared); };
    expectGranted(3, lockAnother);
    EXPECT_EQ(3, locks()->GetSize());
    EXPECT_TRUE(tables.lock(anna, "a", kShared));
    EXPECT_TRUE(tables.lock(bob, "z", kShared));
    tables.unlock(anna, "a");
    expectGranted(1, lockAnother);
}

TEST_F(CentralLimits, AllSessionsTogetherHoldABoundedNumberOfLocks) {
    for (const char* name : {"a", "b", "c"}) EXPECT_TRUE(tables.lock(anna, name, kShared));
    const LONG carl = begin();
    char name = 'd';
    const auto lockAnother = [&] { return tables.lock(carl, CString(name++), kShared); };
    expectGranted(2, lockAnother);
    EXPECT_TRUE(tables.lock(bob, "a", kShared));  // not one more
    EXPECT_FALSE(tables.lock(bob, "z", kShared));
    tables.endSession(anna);
    EXPECT_TRUE(tables.lock(bob, "z", kShared));
}

TEST_F(CentralLimits, WhatIsRefusedOrReleasedTwiceCountsForNothing) {
    tables.lock(bob, "held", kExclusive);
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(tables.lock(anna, "held", kShared));
    tables.lock(anna, "a", kShared);
    for (int i = 0; i < 5; ++i) tables.unlock(anna, "a");
    char name = 'b';
    expectGranted(3, [&] { return tables.lock(anna, CString(name++), kShared); });
}

TEST_F(CentralLimits, ASessionGetsALockABoundedNumberOfTimes) {
    expectGranted(2, [&] { return tables.lock(anna, "a", kShared); });
    EXPECT_TRUE(tables.lock(bob, "a", kShared));
    tables.unlock(anna, "a");
    expectGranted(2, [&] { return tables.lock(anna, "A", kShared); });
}

TEST_F(CentralLimits, ALockIsGrantedABoundedNumberOfTimes) {
    const LONG carl = begin();
    expectGranted(2, [&] { return tables.lock(anna, "a", kShared); });
    expectGranted(2, [&] { return tables.lock(bob, "a", kShared); });
    expectGranted(0, [&] { return tables.lock(carl, "a", kShared); });
    EXPECT_EQ((Numbers{anna, anna, bob, bob}), sessionsOf(*(*locks())[0]));
    tables.endSession(anna);
    expectGranted(2, [&] { return tables.lock(carl, "a", kShared); });
}

TEST_F(CentralLimits, ASessionHasABoundedNumberOfConnectionsOpen) {
    const auto opens = [&](const char* name) { return tables.openConnection(anna, name) >= 0; };
    EXPECT_TRUE(opens("a"));
    expectGranted(2, [&] { return opens("b"); });
    EXPECT_EQ(-1, tables.openConnection(anna, "c"));
    EXPECT_EQ(2, connections()->GetSize());
    EXPECT_EQ(0, tables.openConnection(bob, "a"));
    tables.closeConnection(anna, 7);
    expectGranted(0, [&] { return opens("a"); });
    tables.closeConnection(anna, 1);
    expectGranted(1, [&] { return opens("a"); });
}

TEST_F(CentralLimits, NamesOfLocksAndConnectionsAreBounded) {
    EXPECT_TRUE(tables.lock(anna, text(10), kShared));
    EXPECT_FALSE(tables.lock(anna, text(11), kShared));
    EXPECT_EQ(0, tables.openConnection(anna, text(10)));
    EXPECT_EQ(-1, tables.openConnection(anna, text(11)));
    EXPECT_EQ(1, locks()->GetSize());
    EXPECT_EQ(1, connections()->GetSize());
}

TEST_F(CentralLimits, TheTextsOfAUserAreBounded) {
    for (auto setText :
         {&NySeUser::setStrUserName, &NySeUser::setStrHostName, &NySeUser::setStrComputerName}) {
        NySeUser user;
        (user.*setText)(text(11));
        EXPECT_FALSE(tables.registerUser(user, anna));
        (user.*setText)(text(10));
        EXPECT_TRUE(tables.registerUser(user, anna));
    }
    EXPECT_FALSE(tables.renameUser(anna, text(11)));
    EXPECT_TRUE(tables.renameUser(anna, text(10)));
    EXPECT_EQ(text(10), tables.users().findBySessionNumber(anna)->getStrUserName());
}

TEST_F(CentralLimits, NobodyHoldsOrOpensWithoutASession) {
    EXPECT_FALSE(tables.lock(4711, "a", kShared));
    EXPECT_EQ(-1, tables.openConnection(4711, "a"));
    EXPECT_EQ(0, locks()->GetSize());
    EXPECT_EQ(0, connections()->GetSize());
}

// The documented numbers of bytes, with a little room for the descriptions of the classes.
class CentralAmplification : public TablesTest {
  protected:
    void expectJustWithin(size_t bound) {
        const size_t bytes = 8 + notifier.told.back().body.size();
        EXPECT_LE(bytes, bound);
        EXPECT_GE(bytes + 128, bound);
    }

    const CString longest = CString(std::string(limits.longestText, 'x').c_str());
    const LONG anna = join("Anna");
};

TEST_F(CentralAmplification, ALockHandsABoundedNumberOfBytesToAListener) {
    for (size_t grants = 0; grants < limits.grantsPerLock;) {
        const LONG session = begin();
        for (size_t i = 0; i < limits.grantsPerSession && grants < limits.grantsPerLock; ++i) {
            ASSERT_TRUE(tables.lock(session, longest, kShared));
            ++grants;
        }
    }
    expectJustWithin(limits.longestLockNotification());
}

TEST_F(CentralAmplification, AConnectionHandsABoundedNumberOfBytesToAListener) {
    ASSERT_EQ(0, tables.openConnection(begin(), longest));
    expectJustWithin(limits.longestConnectionNotification());
}

TEST_F(CentralAmplification, AUserHandsABoundedNumberOfBytesToAListener) {
    NySeUser user;
    user.setStrUserName(longest);
    user.setStrHostName(longest);
    user.setStrComputerName(longest);
    ASSERT_TRUE(tables.registerUser(user, begin()));
    expectJustWithin(limits.longestUserNotification());
}

TEST_F(CentralAmplification, ANotificationIsMadeOnceForAllItsReceivers) {
    const LONG bob = join("Bob");
    tables.lock(begin(), "part", kShared);
    ASSERT_EQ(1u, notifier.told.size());
    EXPECT_EQ((Numbers{anna, bob}), notifier.told[0].sessions);
}

}  // namespace
