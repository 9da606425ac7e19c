#include "tests/apps/CentralTest.h"

namespace {

using CentralServerTest = CentralTest;

class CentralServerOfTwo : public CentralTest {
  protected:
    CentralServerOfTwo() : CentralTest(ofTwo()) {}

    static CentralSettings ofTwo() {
        CentralSettings settings = withPorts(refusingPorts());
        settings.maxSessions = 2;
        return settings;
    }

    bool isServed(NySeClientApp& who) {
        who.connect(static_cast<int>(server.GetPort()), "127.0.0.1", -1);
        return who.isAlive();
    }
};

TEST_F(CentralServerOfTwo, ClosesAThirdConnectionAtOnce) {
    NySeClientApp second, third;
    EXPECT_TRUE(isServed(client));
    EXPECT_TRUE(isServed(second));
    EXPECT_FALSE(isServed(third));
    EXPECT_TRUE(client.isAlive());
    EXPECT_NE(std::string::npos, server.events().newest(5).find("beyond the most sessions"));
}

TEST_F(CentralServerOfTwo, ServesAnotherWhenOneHasLeft) {
    NySeClientApp second;
    EXPECT_TRUE(isServed(client));
    EXPECT_TRUE(isServed(second));
    client.disconnect();
    EXPECT_TRUE(eventually([this] {
        NySeClientApp third;
        return isServed(third);
    }));
}

TEST_F(CentralServerTest, AnswersThatItIsAlive) {
    connect(client);
    EXPECT_TRUE(client.isAlive());
}

TEST_F(CentralServerTest, TellsItsVersion) {
    connect(client);
    EXPECT_EQ(CentralServer::kVersion, client.getVersion());
}

TEST_F(CentralServerTest, GrantsTheCurrentSchema) {
    connect(client);
    EXPECT_EQ(NySe::schema2015, client.getSchemaType());
}

TEST_F(CentralServerTest, GrantsTheSmallerOfTwoSchemas) {
    for (const auto& [asked, granted] :
         {std::pair<LONG, LONG>{2014, 2014}, {2015, 2015}, {2016, 2015}}) {
        connect(client);
        send(client, request(97, wireOf(asked)));
        EXPECT_EQ(granted, receive<LONG>(client));
        client.disconnect();
    }
}

TEST_F(CentralServerTest, CompletesARegisteredUser) {
    connect(client);
    NySeUser anna = named("Anna");
    anna.setSoftType(3);
    const int port = client.getPortClient(anna);
    EXPECT_GT(port, 0);
    EXPECT_EQ(port, anna.getPort());
    EXPECT_GT(anna.getSessionNumber(), 0);
    EXPECT_EQ(3, anna.getSoftType());
    EXPECT_EQ(CString("Anna"), anna.getStrUserName());
}

TEST_F(CentralServerTest, ListsUsersByName) {
    NySeClientApp other;
    connect(client);
    connect(other);
    NySeUser bob = named("bob");
    NySeUser anna = named("Anna");
    client.getPortClient(bob);
    other.getPortClient(anna);
    EXPECT_EQ((std::vector<std::string>{"Anna", "bob"}), userNames(client));
    EXPECT_NE(anna.getSessionNumber(), bob.getSessionNumber());
    EXPECT_NE(anna.getPort(), bob.getPort());
}

TEST_F(CentralServerTest, ServesManyClientsAtOnce) {
    constexpr int kClients = 40;
    std::vector<std::unique_ptr<NySeClientApp>> clients;
    for (int i = 0; i < kClients; ++i) {
        connect(*clients.emplace_back(std::make_unique<NySeClientApp>()));
        NySeUser user = named(std::to_string(i).c_str());
        EXPECT_GT(clients.back()->getPortClient(user), 0);
    }
    EXPECT_EQ(static_cast<size_t>(kClients), userNames(*clients.front()).size());
    for (const auto& one : clients) EXPECT_TRUE(one->isAlive());
}

TEST_F(CentralServerTest, StopsWithClientsConnected) {
    CentralServer second;
    ASSERT_EQ(0, second.start(::htonl(INADDR_LOOPBACK), 0));
    ASSERT_EQ(0, client.connect(static_cast<int>(second.GetPort()), "127.0.0.1", -1));
    EXPECT_TRUE(client.isAlive());
}

TEST_F(CentralServerTest, RefusesAPortThatIsTaken) {
    CentralServer second;
    EXPECT_EQ(
        18, second.start(::htonl(INADDR_LOOPBACK), static_cast<unsigned short>(server.GetPort())));
}

}  // namespace
