// What waits, and how long. Bounds are wide above, for a busy machine, and exact below.
#include <gtest/gtest.h>

#include <chrono>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"
#include "tests/support/ScriptedSource.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds kOneSecond = 950ms;  // less the coarseness of the clocks
constexpr milliseconds kFar = 8000ms;

template <class Action>
milliseconds timeOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
}

class ClientWaits : public testing::Test {
  protected:
    void connectTo(const peers::Peer& peer) {
        ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
    }
    template <class Action>
    void expectOneSecond(Action action) {
        const milliseconds time = timeOf(action);
        EXPECT_GE(time, kOneSecond);
        EXPECT_LT(time, kFar);
    }

    ProbeClient m_client;
    char m_buffer[64] = "";
};

TEST_F(ClientWaits, ConnectGivesUpAfterItsSeconds) {
    peers::UnansweringPort port;
    expectOneSecond(
        [&] { EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", 1), UTE_CONNECT_TIMEOUT); });
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientWaits, ReceiveGivesUpAfterItsSeconds) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    expectOneSecond([&] { EXPECT_EQ(m_client.Receive(m_buffer, sizeof m_buffer, 1), 0); });
    EXPECT_EQ(m_client.IsConnected(), 1);
}

TEST_F(ClientWaits, ReceiveLineGivesWhatCameWithinItsSeconds) {
    peers::Peer peer(peers::sending("unfinished"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    expectOneSecond([&] { EXPECT_EQ(m_client.ReceiveLine(m_buffer, sizeof m_buffer, 1), 10); });
    EXPECT_STREQ(m_buffer, "unfinished");
}

// Its peer sends a piece each time that it begins to wait.
class FedClient : public ProbeClient {
  public:
    explicit FedClient(std::vector<std::string> pieces) : m_pieces(std::move(pieces)) {
        ::listen(m_listener.get(), 1);
        EXPECT_EQ(connectTo(static_cast<unsigned int>(peers::portOf(m_listener))), UTE_SUCCESS);
        m_peer.reset(::accept(m_listener.get(), nullptr, nullptr));
    }
    int WaitForReceive(long seconds, long microseconds) override {
        const std::string& piece = m_pieces.at(receiveWaits.size());
        ::send(m_peer.get(), piece.data(), static_cast<int>(piece.size()), 0);
        return ProbeClient::WaitForReceive(seconds, microseconds);
    }

  private:
    const std::vector<std::string> m_pieces;
    const UniqueSocket m_listener = peers::bindToLoopback();
    UniqueSocket m_peer;
};

TEST_F(ClientWaits, ReceiveLineWaitsAnewForEachPiece) {
    FedClient client({"a", "b", "c\n"});
    EXPECT_EQ(client.ReceiveLine(m_buffer, sizeof m_buffer, 20), 4);
    EXPECT_STREQ(m_buffer, "abc\n");
    EXPECT_EQ(client.receiveWaits, std::vector<long>({20, 20, 20}));
}

TEST_F(ClientWaits, ReceiveIntoASourceGivesUpAfterItsSeconds) {
    peers::Peer peer(peers::sending("some"));
    connectTo(peer);
    ASSERT_TRUE(m_client.hasArrived());
    ScriptedSource target;
    expectOneSecond([&] { EXPECT_EQ(m_client.Receive(target, OM_WRITE, 1, 0), UTE_SOCK_TIMEOUT); });
    EXPECT_EQ(target.content, "some");
    EXPECT_EQ(target.closed, 1);
}

TEST_F(ClientWaits, ReceiveFromGivesUpAfterItsSeconds) {
    char loopback[] = "127.0.0.1";
    ASSERT_EQ(m_client.CreateUDPSocket(0, 9, loopback, loopback), UTE_SUCCESS);
    int length = sizeof m_buffer;
    expectOneSecond(
        [&] { EXPECT_EQ(m_client.ReceiveFrom(m_buffer, length, 1), UTE_SOCK_TIMEOUT); });
}

TEST_F(ClientWaits, WaitForAcceptGivesUpAfterItsSeconds) {
    ASSERT_EQ(m_client.WaitForConnect(0, 5, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
    expectOneSecond([&] { EXPECT_EQ(m_client.WaitForAccept(1), UTE_ERROR); });
}

TEST_F(ClientWaits, WaitForReceiveAddsSecondsAndMicroseconds) {
    peers::Peer peer(peers::silent());
    connectTo(peer);
    const milliseconds time = timeOf([&] { m_client.WaitForReceive(1, 500000); });
    EXPECT_GE(time, 1450ms);
    EXPECT_LT(time, kFar);
}

TEST_F(ClientWaits, WaitForReceiveEndsWhenDataComes) {
    peers::Peer peer(peers::sendingPieces({"", "x"}, 100));
    connectTo(peer);
    const milliseconds time = timeOf([&] { EXPECT_EQ(m_client.WaitForReceive(30, 0), 0); });
    EXPECT_LT(time, kFar);
}

}  // namespace
