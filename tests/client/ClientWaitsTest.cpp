// The time-outs for real: each test waits as long as the rule says.
#include <chrono>

#include "tests/client/ClientTest.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

class ClientWaits : public ClientTest {
  protected:
    // Expects `action` to take the time given, and not much more.
    template <class Action>
    static void expectWait(seconds wait, Action action) {
        const Clock::time_point start = Clock::now();
        action();
        const auto taken = Clock::now() - start;
        EXPECT_GE(taken, wait - std::chrono::milliseconds(200));
        EXPECT_LE(taken, wait + seconds(8));
    }
};

TEST_F(ClientWaits, IsAliveGivesUpAfter15Seconds) {
    serveRequest(goldenWire("request-isAlive"), "");
    expectWait(seconds(15), [this] { EXPECT_FALSE(client.isAlive()); });
}

TEST_F(ClientWaits, GetVersionGivesUpAfter15Seconds) {
    serveRequest(goldenWire("request-getVersion"), "");
    expectWait(seconds(15), [this] { EXPECT_EQ(-1.0, client.getVersion()); });
}

TEST_F(ClientWaits, AMessageWithoutLengthGivesUpAfter15Seconds) {
    serveRequest(goldenWire("request-getPortClient"), "");
    NySeUser user;
    user.setStrUserName(_T("somebody with quite a long name"));
    expectWait(seconds(15), [&] { EXPECT_EQ(0, client.getPortClient(user)); });
}

TEST_F(ClientWaits, AMessageThatStallsGivesUpAfter30Seconds) {
    serveRequest(goldenWire("request-getAllUser"), wireOf<LONG>(100) + "some");
    NySeUserPtrArray users;
    expectWait(seconds(30), [&] { client.getAllUser(users); });
    EXPECT_EQ(0, users.GetSize());
}

TEST_F(ClientWaits, AMessageMayPauseLongerThanTheScalarTimeOut) {
    const std::string reply = goldenWire("reply-users");
    NySeUserPtrArray users;
    const peers::Peer peer([&](peers::Connection& connection) {
        connection.receive();
        connection.send(reply.substr(0, 20));
        for (int i = 0; i < 170; ++i) ::Sleep(100);
        connection.send(reply.substr(20));
        connection.receiveAll();
    });
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
    expectWait(seconds(17), [&] { client.getAllUser(users); });
    EXPECT_EQ(2, users.GetSize());
    client.disconnect();
}

}  // namespace
