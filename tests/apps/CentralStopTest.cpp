// The server's end, whatever its clients are doing.
#include "tests/apps/CentralTest.h"

namespace {

class CentralStop : public CentralTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, central->start(::htonl(INADDR_LOOPBACK), 0));
        ASSERT_EQ(0, client.connect(static_cast<int>(central->GetPort()), "127.0.0.1", -1));
    }

    // So many requests that their answers fit into no socket. Nothing of them is read.
    void flood(const char* request) {
        std::string requests;
        for (int i = 0; i < 2000; ++i) requests += goldenWire(request);
        send(client, requests);
        ::Sleep(1000);
    }

    void expectToStopSoon() {
        const auto start = std::chrono::steady_clock::now();
        central.reset();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
    }

    std::unique_ptr<CentralServer> central =
        std::make_unique<CentralServer>(withPorts(refusingPorts()));
};

TEST_F(CentralStop, IsNotHeldUpByAClientThatTakesNoTablesOfLocks) {
    for (int i = 0; i < 1000; ++i) client.lock(CString(std::to_string(i).c_str()), 0);
    flood("request-getLock");
    expectToStopSoon();
}

TEST_F(CentralStop, IsNotHeldUpByAClientThatTakesNoTablesOfUsers) {
    NySeUser user = named(std::string(TableLimits().longestText, 'x').c_str());
    EXPECT_GT(client.getPortClient(user), 0);
    std::vector<std::unique_ptr<NySeClientApp>> others(40);
    for (auto& other : others) {
        other = std::make_unique<NySeClientApp>();
        ASSERT_EQ(0, other->connect(static_cast<int>(central->GetPort()), "127.0.0.1", -1));
        EXPECT_GT(other->getPortClient(user), 0);
    }
    flood("request-getAllUser");
    expectToStopSoon();
}

}  // namespace
