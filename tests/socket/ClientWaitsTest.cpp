// What waits, and how long. Bounds are wide above, for a busy machine, and exact below.
#include "tests/socket/EndTest.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

class ClientWaits : public Client {
  protected:
    template <class Action>
    static void expectTime(milliseconds atLeast, Action action) {
        const auto start = std::chrono::steady_clock::now();
        action();
        const auto time = std::chrono::steady_clock::now() - start;
        EXPECT_GE(time, atLeast - 50ms);  // the coarseness of the clocks
        EXPECT_LT(time, 8s);
    }

    ProbeClient m_client;
};

TEST_F(ClientWaits, ConnectGivesUpAfterItsSeconds) {
    peers::UnansweringPort port;
    expectTime(
        1s, [&] { EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", 1), UTE_CONNECT_TIMEOUT); });
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientWaits, ReceiveFromGivesUpAfterItsSeconds) {
    char loopback[] = "127.0.0.1";
    ASSERT_EQ(m_client.CreateUDPSocket(0, 9, loopback, loopback), UTE_SUCCESS);
    char buffer[64];
    int length = sizeof buffer;
    expectTime(1s, [&] { EXPECT_EQ(m_client.ReceiveFrom(buffer, length, 1), UTE_SOCK_TIMEOUT); });
}

TEST_F(ClientWaits, WaitForAcceptGivesUpAfterItsSeconds) {
    ASSERT_EQ(m_client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
    expectTime(1s, [&] { EXPECT_EQ(m_client.WaitForAccept(1), UTE_ERROR); });
}

TEST_F(ClientWaits, WaitForReceiveAddsSecondsAndMicroseconds) {
    expectTime(1500ms, [&] { EXPECT_EQ(m_end.WaitForReceive(1, 500000), UTE_ERROR); });
}

TEST_F(ClientWaits, WaitForReceiveEndsWhenDataArrives) {
    m_end.beforeWait = [this] { m_peer.send("x"); };
    expectTime(0s, [&] { EXPECT_EQ(m_end.WaitForReceive(30, 0), UTE_SUCCESS); });
}

}  // namespace
