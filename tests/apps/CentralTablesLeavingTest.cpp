// What a session holds is let go even when the others cannot be told.
#include "tests/apps/TablesTest.h"

namespace {

class CentralTablesLeaving : public TablesTest {
  protected:
    // Anna has all there is to have, and all ports.
    void SetUp() override {
        tables.registerUser(named("Anna"), anna);
        for (const char* name : {"a", "b"}) EXPECT_TRUE(tables.lock(anna, name, 0x01));
        EXPECT_TRUE(tables.lock(bob, "b", 0x01));
        for (const char* name : {"A", "B", "B"}) EXPECT_GE(tables.openConnection(anna, name), 0);
        EXPECT_EQ(1, tables.openConnection(bob, "B"));
        EXPECT_GT(tables.anotherPort(anna), 0);
        tables.registerUser(named("Bob"), bob);
    }

    void expectOnlyBobsLeft() {
        ASSERT_EQ(1, locks()->GetSize());
        EXPECT_EQ(Numbers{bob}, sessionsOf(*(*locks())[0]));
        ASSERT_EQ(1, connections()->GetSize());
        EXPECT_EQ(1, connections()->findById(1)->getRefCount());
        EXPECT_EQ(Numbers{bob}, sessionsOf(tables.users()));
        EXPECT_EQ(0u, notifier.listeners.count(anna));
        for (int i = 0; i < 2; ++i) EXPECT_GT(tables.anotherPort(begin()), 0);
        EXPECT_TRUE(tables.faults().empty());
    }

    const LONG anna = begin();
    const LONG bob = begin();
};

TEST_F(CentralTablesLeaving, LetsGoOfAllAndTellsTheOthers) {
    notifier.told.clear();
    tables.endSession(anna);
    EXPECT_EQ((Numbers{notifyLockReleased, notifyLockReleased, notifyConnectionClosed,
                       notifyConnectionClosed, notifyConnectionClosed, notifyUserLeft}),
              notifier.numbers());
    expectOnlyBobsLeft();
}

TEST_F(CentralTablesLeaving, LetsGoOfAllWhenTheOthersCannotBeTold) {
    notifier.isFailing = true;
    tables.endSession(anna);
    expectOnlyBobsLeft();
}

TEST_F(CentralTablesLeaving, AUserWithANewNameTakesThePlaceOfTheOldOne) {
    EXPECT_TRUE(tables.renameUser(anna, "Zoe"));
    EXPECT_EQ((Numbers{bob, anna}), sessionsOf(tables.users()));
    EXPECT_TRUE(tables.faults().empty());
}

}  // namespace
