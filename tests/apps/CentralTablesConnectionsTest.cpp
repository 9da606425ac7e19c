#include "tests/apps/TablesTest.h"

namespace {

class CentralTablesConnections : public TablesTest {
  protected:
    Numbers openers(LONG id) {
        return sessionsOf(*read<NySeUserPtrArray>(tables.connectionOpeners(id)));
    }
};

TEST_F(CentralTablesConnections, AConnectionKnowsItsOpeners) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    EXPECT_EQ(0, tables.openConnection(bob, "A"));
    EXPECT_EQ(0, tables.openConnection(anna, "a"));
    EXPECT_EQ(0, tables.openConnection(anna, "A"));
    EXPECT_EQ(1, tables.openConnection(anna, "B"));
    EXPECT_EQ((Numbers{anna, bob}), openers(0));
    EXPECT_EQ(Numbers{anna}, openers(1));
    EXPECT_EQ(Numbers{}, openers(2));
    EXPECT_EQ(3, connections()->findById(0)->getRefCount());
}

TEST_F(CentralTablesConnections, ItIsForgottenWithItsLastCloseAndItsIdGivenAgain) {
    const LONG anna = join("Anna");
    tables.openConnection(anna, "A");
    tables.openConnection(anna, "A");
    tables.closeConnection(anna, 0);
    EXPECT_EQ(Numbers{anna}, openers(0));
    tables.closeConnection(anna, 0);
    EXPECT_EQ(0, connections()->GetSize());
    EXPECT_EQ(Numbers{}, openers(0));
    EXPECT_EQ(0, tables.openConnection(anna, "B"));
}

TEST_F(CentralTablesConnections, OneSessionCannotCloseForAnother) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    tables.openConnection(anna, "A");
    notifier.told.clear();
    tables.closeConnection(bob, 0);
    tables.closeConnection(anna, 7);
    EXPECT_EQ(1, connections()->findById(0)->getRefCount());
    EXPECT_TRUE(notifier.told.empty());
}

TEST_F(CentralTablesConnections, ASessionWithoutAUserOpensByItsNumber) {
    const LONG session = begin();
    EXPECT_EQ(0, tables.openConnection(session, "A"));
    EXPECT_EQ(Numbers{}, openers(0));
    tables.closeConnection(session, 0);
    EXPECT_EQ(0, connections()->GetSize());
}

TEST_F(CentralTablesConnections, WhatASessionHasOpenIsClosedAsOftenWhenItEnds) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    for (const char* name : {"A", "A", "B"}) tables.openConnection(bob, name);
    tables.openConnection(anna, "A");
    notifier.told.clear();
    tables.endSession(bob);
    ASSERT_EQ(1, connections()->GetSize());
    EXPECT_EQ(1, connections()->findById(0)->getRefCount());
    EXPECT_EQ((Numbers{notifyConnectionClosed, notifyConnectionClosed, notifyConnectionClosed,
                       notifyUserLeft}),
              notifier.numbers());
    EXPECT_TRUE(tables.faults().empty());
}

TEST_F(CentralTablesConnections, TheOthersAreToldHowOftenItIsOpenNow) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    tables.openConnection(anna, "A");
    tables.openConnection(bob, "A");
    tables.closeConnection(anna, 0);
    tables.closeConnection(bob, 0);
    ASSERT_EQ((Numbers{notifyConnectionOpened, notifyConnectionOpened, notifyConnectionClosed,
                       notifyConnectionClosed}),
              notifier.numbers());
    const LONG counts[] = {1, 2, 1, 0};
    const LONG receivers[] = {bob, anna, bob, anna};
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const auto connection = notifier.told[i].object<NySeConnection>();
        ASSERT_NE(nullptr, connection);
        EXPECT_EQ(CString("A"), connection->getStrConnection());
        EXPECT_EQ(0, connection->getId());
        EXPECT_EQ(counts[i], connection->getRefCount());
        EXPECT_EQ(Numbers{receivers[i]}, notifier.told[i].sessions);
    }
}

TEST_F(CentralTablesConnections, ItsDataGoesToThoseWhoHaveItOpen) {
    const LONG anna = join("Anna");
    const LONG bob = join("Bob");
    join("Carl");
    for (const LONG session : {anna, bob}) tables.openConnection(session, "A");
    notifier.told.clear();
    tables.sendToOpeners(anna, 0, "data");
    tables.sendToOpeners(anna, 1, "of no connection");
    ASSERT_EQ(Numbers{notifyConnectionData}, notifier.numbers());
    EXPECT_EQ(Numbers{bob}, notifier.told[0].sessions);
    EXPECT_EQ("data", notifier.told[0].body);
}

}  // namespace
