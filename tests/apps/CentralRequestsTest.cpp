// Every request, from a client through the socket to the tables and back.
#include <ctime>

#include "NyServer/host/NyFctIpUtil.h"
#include "tests/apps/CentralTest.h"

namespace {

using Names = std::vector<std::string>;

class CentralRequests : public CentralTest {
  protected:
    void SetUp() override {
        CentralTest::SetUp();
        m_anna = join(client, "Anna");
        m_bob = join(other, "Bob");
    }

    Names holders(const char* lock) {
        NySeUserPtrArray users;
        client.isLockBy(lock, users);
        return namesOf(users);
    }
    Names openers(long id) {
        NySeUserPtrArray users;
        client.isOpenConnectionBy(id, users);
        return namesOf(users);
    }

    NySeClientApp other;
    NySeUser m_anna;
    NySeUser m_bob;
};

TEST_F(CentralRequests, LocksAreGrantedRefusedAndReleased) {
    EXPECT_TRUE(client.lock("part", 0x18));
    EXPECT_FALSE(other.lock("part", 0x01));
    EXPECT_TRUE(client.unLock("part"));
    EXPECT_TRUE(client.isAlive());  // the release has been done
    EXPECT_TRUE(other.lock("part", 0x01));
}

TEST_F(CentralRequests, HoldersOfALockAreListed) {
    EXPECT_FALSE(client.isLockBy("part", *std::make_unique<NySeUserPtrArray>()));
    other.lock("part", 0x01);
    client.lock("part", 0x01);
    other.lock("part", 0x01);
    EXPECT_EQ((Names{"Anna", "Bob"}), holders("PART"));
}

TEST_F(CentralRequests, TheTableOfLocksIsGivenWithItsHolders) {
    client.lock("part", 0x18);
    NySeLockArray locks;
    other.getLock(locks);
    ASSERT_EQ(1, locks.GetSize());
    EXPECT_EQ(CString("part"), locks[0]->getStrLockName());
    ASSERT_EQ(1, locks[0]->getHolders().GetSize());
    EXPECT_EQ(m_anna.getSessionNumber(), locks[0]->getHolders()[0]->getSessionNumber());
    EXPECT_EQ(0x18u, locks[0]->getHolders()[0]->getLockState());
}

TEST_F(CentralRequests, ConnectionsAreOpenedListedAndClosed) {
    EXPECT_EQ(0, client.openConnection("A"));
    EXPECT_EQ(0, other.openConnection("a"));
    EXPECT_EQ(1, other.openConnection("B"));
    EXPECT_EQ((Names{"Anna", "Bob"}), openers(0));
    EXPECT_EQ(Names{"Bob"}, openers(1));
    client.closeConnection(0);
    NySeConnectionArray connections;
    client.getConnection(connections);
    ASSERT_EQ(2, connections.GetSize());
    EXPECT_EQ(1, connections.findByConnection("A")->getRefCount());
    EXPECT_EQ(Names{"Bob"}, openers(0));
    EXPECT_EQ(Names{}, openers(7));
}

TEST_F(CentralRequests, AUserOfAnOlderSchemaRegistersWithoutItsSoftType) {
    NySeClientApp older;
    connect(older);
    NySeUser zoe;
    zoe.setStrUserName("Zoe");
    zoe.setSoftType(7);
    EXPECT_GT(older.getPortClient(zoe), 0);
    EXPECT_EQ(0, zoe.getSoftType());
    EXPECT_EQ((Names{"Anna", "Bob", "Zoe"}), userNames(other));
}

TEST_F(CentralRequests, AUserOfTheCurrentSchemaRegistersWithItsSoftType) {
    m_anna.setSoftType(7);
    EXPECT_GT(client.getPortClient(m_anna), 0);
    NySeUserPtrArray users;
    other.getAllUser(users);
    EXPECT_EQ(7, users.findByUserName("Anna")->getSoftType());
}

TEST_F(CentralRequests, TheSchemaGrantedIsAtLeast0AndAtMostTheCurrentOne) {
    const std::pair<LONG, LONG> grants[] = {{-5, 0},      {0, 0},       {1, 1},
                                            {2014, 2014}, {2015, 2015}, {2016, 2015}};
    for (const auto& [asked, granted] : grants) {
        send(client, request(97, wireOf(asked)));
        EXPECT_EQ(granted, receive<LONG>(client)) << asked;
    }
}

TEST_F(CentralRequests, AUserTakesAnotherPort) {
    const int another = client.getAnotherPort();
    EXPECT_GT(another, 0);
    EXPECT_NE(another, m_anna.getPort());
    EXPECT_NE(another, m_bob.getPort());
    NySeUserPtrArray users;
    other.getAllUser(users);
    EXPECT_EQ(another, users.findByUserName("Anna")->getPort());
}

TEST_F(CentralRequests, AUserTakesAnotherName) {
    EXPECT_TRUE(client.updateUserName("Zoe"));
    EXPECT_EQ((Names{"Bob", "Zoe"}), userNames(other));
    NySeClientApp stranger;
    connect(stranger);
    EXPECT_FALSE(stranger.updateUserName("Nobody"));
}

TEST_F(CentralRequests, AClientWithoutAUserMayAskAndLock) {
    NySeClientApp stranger;
    connect(stranger);
    EXPECT_EQ((Names{"Anna", "Bob"}), userNames(stranger));
    EXPECT_TRUE(stranger.lock("part", 0x18));
    EXPECT_EQ(0, stranger.openConnection("A"));
    EXPECT_FALSE(client.lock("part", 0x01));
    NySeUserPtrArray users;
    EXPECT_TRUE(client.isLockBy("part", users));
    EXPECT_EQ(0, users.GetSize());
}

TEST_F(CentralRequests, TheTimeIsNow) {
    const long now = static_cast<long>(std::time(nullptr));
    EXPECT_NEAR(now, client.getCurrentTime(), 5);
}

TEST_F(CentralRequests, TheMachineHasOneIdentity) {
    const CString identity = client.getMachineIdentifiant();
    EXPECT_EQ(NyFctIpUtil::getStrMachineID(), identity);
    EXPECT_EQ(identity, other.getMachineIdentifiant());
    EXPECT_FALSE(identity.IsEmpty());
}

TEST_F(CentralRequests, EventsAreListedNewestFirst) {
    client.updateUserName("Zoe");
    const std::string list = textOf(client.getEventListFromEventViewer(2));
    const size_t second = list.find('\n');
    ASSERT_NE(std::string::npos, second);
    EXPECT_NE(std::string::npos, list.find(" renames its user Zoe\n"));
    EXPECT_NE(std::string::npos, list.find(" registers user Bob", second));
    EXPECT_EQ(std::string::npos, list.find('\n', second + 1));
    EXPECT_TRUE(client.getEventListFromEventViewer(0).IsEmpty());
    EXPECT_NE(-1, client.getEventListFromEventViewer(1000).Find(L"listening on port"));
}

TEST_F(CentralRequests, TablesThatAgreeGiveNoLineOnACheck) {
    client.openConnection("A");
    client.lock("part", 0x18);
    ::testing::internal::CaptureStderr();
    client.verifyCoherancy();
    EXPECT_TRUE(client.isAlive());
    EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
}

TEST_F(CentralRequests, TheServerInformationIsComplete) {
    CStringArray report;
    client.getServerInformation(report);
    EXPECT_EQ(10, report.GetSize());
    EXPECT_NE(-1, report[7].Find(NyFctIpUtil::getStrMachineID()));
}

class CentralShutDown : public CentralTest {
  protected:
    CentralShutDown() : CentralTest(countingInto(asked)) {}

    static CentralSettings countingInto(std::atomic<int>& count) {
        CentralSettings settings;
        settings.onShutDownRequest = [&count] { ++count; };
        return settings;
    }

    std::atomic<int> asked = 0;
};

TEST_F(CentralShutDown, AClientsRequestIsPassedOn) {
    connect(client);
    client.shutDownServer();
    EXPECT_TRUE(client.isAlive());
    EXPECT_EQ(1, asked);
}

class CentralOnePort : public CentralTest {
  protected:
    CentralOnePort() : CentralTest(withPorts({refusingPorts()[0]})) {}
};

TEST_F(CentralOnePort, ALateUserGetsNone) {
    NySeClientApp late;
    EXPECT_EQ(refusingPorts()[0], join(client, "Anna").getPort());
    connect(late);
    NySeUser bob = named("Bob");
    EXPECT_EQ(0, late.getPortClient(bob));
    EXPECT_EQ(-1, bob.getPort());
    EXPECT_EQ(-1, late.getAnotherPort());
    EXPECT_EQ(Names{"Anna"}, userNames(late));
    client.disconnect();
    EXPECT_TRUE(eventually([&] { return late.getPortClient(bob) == refusingPorts()[0]; }));
}

}  // namespace
