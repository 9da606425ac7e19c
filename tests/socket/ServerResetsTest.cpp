// Peers that reset their connections before these are accepted.
#include <gtest/gtest.h>

#include "tests/socket/ProbeServer.h"

namespace {

constexpr int kResets = 1000;

// Lingering for no time: the close is a reset.
void reset(peers::Connection& peer) {
    const linger noTime{1, 0};
    ASSERT_EQ(::setsockopt(peer.socket(), SOL_SOCKET, SO_LINGER,
                           reinterpret_cast<const char*>(&noTime), sizeof noTime),
              0);
    peer.close();
}

class ServerResets : public testing::Test {
  protected:
    void TearDown() override { m_gate.open(); }

    // The accepting thread is held until all have been reset.
    void resetInTheQueue(int count) {
        m_server.onCanAccept = [this] { m_gate.pass(); };
        ASSERT_EQ(m_server.listen(count + 1), UTE_SUCCESS);
        ASSERT_EQ(m_server.StartAccept(), UTE_SUCCESS);
        const peers::Connection held = m_server.connection();
        ASSERT_TRUE(m_gate.awaitArrivals());
        for (int i = 0; i < count; ++i) {
            peers::Connection peer = m_server.connection();
            reset(peer);
        }
        m_gate.open();
    }

    peers::WinsockSession m_winsock;
    Gate m_gate;
    ProbeServer m_server;
};

TEST_F(ServerResets, DoNotEndTheAccepting) {
    resetInTheQueue(kResets);
    EXPECT_EQ(m_server.converse(), ProbeServer::kAnswer);
}

}  // namespace
