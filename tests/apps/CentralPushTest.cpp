// Notifications as the users' listeners get them.
#include "tests/apps/CentralTest.h"
#include "tests/apps/CollectingListener.h"

namespace {

std::string notification(LONG number, const std::string& object) {
    return wireOf(number) + wireOf(static_cast<LONG>(object.size())) + object;
}

std::string notification(LONG number, const CObject& object) {
    return notification(number, archived(object));
}

TEST(Notification, HasTheBytesOfTheProtocol) {
    NySeMessage saved;
    saved.setStrMessage("saved");
    const std::string expected = goldenWire("notification-50-with-message");
    EXPECT_EQ(expected, *makeNotification(notifyLockGranted, saved));
    EXPECT_EQ(expected, *makeNotification(notifyLockGranted, goldenWire("message-plain")));
}

// Made before the server and gone after it.
struct Listeners {
    CollectingListener ofAnna, ofBob, ofCarl, spare;
};

// Anna, Bob and Carl are registered and listen.
class CentralPush : protected Listeners, public CentralTest {
  protected:
    CentralPush()
        : CentralTest(withPorts({ofAnna.port(), ofBob.port(), ofCarl.port(), spare.port()})) {}

    void SetUp() override {
        CentralTest::SetUp();
        anna = join(client, "Anna");
        bob = join(bobsClient, "Bob");
        carl = join(carlsClient, "Carl");
        toAnna = notification(54, bob) + notification(54, carl);
        toBob = notification(54, carl);
    }

    // What each has been told is exactly what the test expects, with nothing behind it.
    void expectTold() {
        NySeMessage end = message("the end");
        client.sendAllUserData(end);
        client.isAlive();
        bobsClient.sendUserData(anna, end);
        toAnna += notification(57, end);
        toBob += notification(58, end);
        toCarl += notification(58, end);
        EXPECT_EQ(toAnna, ofAnna.waitFor(toAnna.size()));
        EXPECT_EQ(toBob, ofBob.waitFor(toBob.size()));
        EXPECT_EQ(toCarl, ofCarl.waitFor(toCarl.size()));
    }

    static NySeConnection connection(LONG id, LONG count) {
        NySeConnection connection;
        connection.setStrConnection("A");
        connection.setId(id);
        connection.setRefCount(count);
        return connection;
    }

    NySeClientApp bobsClient, carlsClient;
    NySeUser anna, bob, carl;
    std::string toAnna, toBob, toCarl;
};

TEST_F(CentralPush, WhoJoinsIsToldToThoseWhoWereThere) {
    expectTold();
}

TEST_F(CentralPush, LocksAreToldToAllButTheirHolder) {
    client.lock("part", 0x18);
    bobsClient.lock("part", 0x01);
    client.unLock("part");
    NySeLock released;
    released.setStrLockName("part");
    NySeLock held;
    held.setStrLockName("part");
    auto* holder = new NySeSessionLock;
    holder->setSessionNumber(anna.getSessionNumber());
    holder->setLockState(0x18);
    held.getHolders().add(holder);
    for (std::string* told : {&toBob, &toCarl})
        *told += notification(50, held) + notification(51, released);
    expectTold();
}

TEST_F(CentralPush, ConnectionsAreToldToAllButWhoOpensOrClosesThem) {
    client.openConnection("A");
    client.openConnection("A");
    client.closeConnection(0);
    client.isAlive();
    for (std::string* told : {&toBob, &toCarl})
        *told += notification(52, connection(0, 1)) + notification(52, connection(0, 2)) +
                 notification(53, connection(0, 1));
    expectTold();
}

TEST_F(CentralPush, WhatALeaverHeldIsToldAndThenThatItLeft) {
    NySeClientApp davesClient;
    const NySeUser dave = join(davesClient, "Dave");
    davesClient.openConnection("A");
    davesClient.disconnect();
    ASSERT_TRUE(eventually([this] { return userNames(client).size() == 3; }));
    for (std::string* told : {&toAnna, &toBob, &toCarl})
        *told += notification(54, dave) + notification(52, connection(0, 1)) +
                 notification(53, connection(0, 0)) + notification(55, dave);
    expectTold();
}

TEST_F(CentralPush, AClientWithoutAUserCausesNotificationsAndGetsNone) {
    NySeClientApp stranger;
    connect(stranger);
    stranger.openConnection("A");
    for (std::string* told : {&toAnna, &toBob, &toCarl})
        *told += notification(52, connection(0, 1));
    expectTold();
}

TEST_F(CentralPush, ConnectionDataReachesTheOthersWhoHaveItOpen) {
    client.openConnection("A");
    bobsClient.openConnection("A");
    NySeMessage saved = message("saved");
    client.sendConnectionData(0, 2, saved);
    client.sendConnectionData(5, 2, saved);
    client.isAlive();
    toBob += notification(52, connection(0, 1));
    toCarl += notification(52, connection(0, 1)) + notification(52, connection(0, 2));
    toAnna += notification(52, connection(0, 2));
    toBob += notification(56, goldenWire("message-plain"));
    expectTold();
}

TEST_F(CentralPush, UserDataReachesTheNamedSessionWhateverTheName) {
    NySeMessage saved = message("saved");
    NySeUser alias = named("nobody");
    alias.setSessionNumber(carl.getSessionNumber());
    client.sendUserData(alias, saved);
    alias.setSessionNumber(4711);
    client.sendUserData(alias, saved);
    client.isAlive();
    toCarl += notification(57, goldenWire("message-plain"));
    expectTold();
}

TEST_F(CentralPush, UserDataGoesOnWholeWhateverTheSchemaOfTheNamedUser) {
    NySeMessage saved = message("saved");
    NySeUser alias = carl;
    for (const LONG schema : {-1, 0, 2014, 2015, 2016}) {
        alias.setSchema(schema);
        client.sendUserData(alias, saved);
        toCarl += notification(57, goldenWire("message-plain"));
    }
    client.isAlive();
    expectTold();
}

TEST_F(CentralPush, AnObjectGoesOnAsItCame) {
    const std::string object("\x01no object at all\0\xFF", 19);
    send(client, request(74, object));
    client.openConnection("A");
    bobsClient.openConnection("A");
    send(client, request(72, wireOf<LONG>(0) + wireOf<LONG>(0) + object));
    client.isAlive();
    const std::string opened = notification(52, connection(0, 1));
    toBob += notification(58, object) + opened + notification(56, object);
    toCarl += notification(58, object) + opened + notification(52, connection(0, 2));
    toAnna += notification(52, connection(0, 2));
    expectTold();
}

TEST_F(CentralPush, NotificationsFollowAUserToAnotherPort) {
    ASSERT_EQ(toBob, ofBob.waitFor(toBob.size()));
    ASSERT_EQ(spare.port(), bobsClient.getAnotherPort());
    client.openConnection("A");
    const std::string opened = notification(52, connection(0, 1));
    EXPECT_EQ(opened, spare.waitFor(opened.size()));
    EXPECT_EQ(toBob, ofBob.received());
}

TEST_F(CentralPush, ThousandsArriveInTheirOrder) {
    for (int i = 0; i < 1000; ++i) {
        client.openConnection("A");
        client.closeConnection(0);
    }
    for (int i = 0; i < 1000; ++i) {
        for (std::string* told : {&toBob, &toCarl})
            *told += notification(52, connection(0, 1)) + notification(53, connection(0, 0));
    }
    expectTold();
}

}  // namespace
