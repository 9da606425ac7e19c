#include "tests/apps/TablesTest.h"

namespace {

using CentralTablesLocks = TablesTest;

TEST_F(CentralTablesLocks, ALockIsGrantedAndRefusedByItsShareMode) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    EXPECT_TRUE(tables.lock(anna, "part", kExclusive));
    EXPECT_FALSE(tables.lock(bob, "Part", kShared));
    EXPECT_TRUE(tables.lock(bob, "other", kShared));
    ASSERT_EQ(2, locks()->GetSize());
    EXPECT_EQ(Numbers{anna}, sessionsOf(*(*locks())[0]));
}

TEST_F(CentralTablesLocks, AReleasedLockCanBeTakenByAnother) {
    const LONG anna = join("Anna");
    tables.lock(anna, "part", kExclusive);
    tables.unlock(anna, "PART");
    EXPECT_EQ(0, locks()->GetSize());
    EXPECT_TRUE(tables.lock(join("Bob"), "part", kShared));
}

TEST_F(CentralTablesLocks, OneSessionCannotReleaseForAnother) {
    const LONG anna = join("Anna");
    tables.lock(anna, "part", kExclusive);
    tables.unlock(join("Bob"), "part");
    tables.unlock(anna, "no such lock");
    EXPECT_EQ(1, locks()->GetSize());
    EXPECT_TRUE(notifier.told.empty());
}

TEST_F(CentralTablesLocks, ASessionWithoutAUserLocksByItsNumber) {
    const LONG session = begin();
    EXPECT_TRUE(tables.lock(session, "part", kExclusive));
    EXPECT_EQ(Numbers{session}, sessionsOf(*(*locks())[0]));
    const auto holders = tables.lockHolders("part");
    ASSERT_TRUE(holders);
    EXPECT_EQ(0, read<NySeUserPtrArray>(*holders)->GetSize());
    tables.unlock(session, "part");
    EXPECT_FALSE(tables.lockHolders("part"));
}

TEST_F(CentralTablesLocks, HoldersAreUsersEachOnce) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    join("Carl");
    for (const LONG session : {bob, anna, bob}) tables.lock(session, "part", kShared);
    const auto holders = read<NySeUserPtrArray>(*tables.lockHolders("part"));
    ASSERT_NE(nullptr, holders);
    EXPECT_EQ((Numbers{anna, bob}), sessionsOf(*holders));
    EXPECT_EQ((Numbers{anna, bob, bob}), sessionsOf(*(*locks())[0]));
}

TEST_F(CentralTablesLocks, TheOthersAreToldWhoHoldsTheLockNow) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    tables.lock(anna, "part", kShared);
    tables.lock(bob, "part", kShared);
    tables.unlock(anna, "PART");
    tables.unlock(bob, "part");
    ASSERT_EQ(
        (Numbers{notifyLockGranted, notifyLockGranted, notifyLockReleased, notifyLockReleased}),
        notifier.numbers());
    const Numbers holders[] = {{anna}, {anna, bob}, {bob}, {}};
    const LONG receivers[] = {bob, anna, bob, anna};
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const auto lock = notifier.told[i].object<NySeLock>();
        ASSERT_NE(nullptr, lock);
        EXPECT_EQ(CString("part"), lock->getStrLockName());
        EXPECT_EQ(holders[i], sessionsOf(*lock));
        EXPECT_EQ(Numbers{receivers[i]}, notifier.told[i].sessions);
    }
}

TEST_F(CentralTablesLocks, ARefusalIsNotTold) {
    tables.lock(join("Anna"), "part", kExclusive);
    const LONG bob = join("Bob");
    EXPECT_FALSE(tables.lock(bob, "part", kShared));
    EXPECT_TRUE(notifier.told.empty());
}

TEST_F(CentralTablesLocks, TheLocksOfASessionThatEndsAreReleasedBeforeItsUserLeaves) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    for (const char* name : {"a", "b", "c"}) tables.lock(bob, name, kShared);
    tables.lock(anna, "b", kShared);
    notifier.told.clear();
    tables.endSession(bob);
    ASSERT_EQ(1, locks()->GetSize());
    EXPECT_EQ(Numbers{anna}, sessionsOf(*(*locks())[0]));
    EXPECT_EQ((Numbers{notifyLockReleased, notifyLockReleased, notifyLockReleased, notifyUserLeft}),
              notifier.numbers());
}

}  // namespace
