// A connection is shut down before it is closed: its peer sees the end although another handle of
// the server's socket stays open.
#include <gtest/gtest.h>

#include "tests/socket/ProbeServer.h"
#include "tests/support/System.h"

namespace {

class ServerShutdown : public ServerTest {
  protected:
    void SetUp() override { start(); }
    NySe::UniqueSocket m_other;  // closed after the peer has seen the end
};

TEST_F(ServerShutdown, EndsARefusedConnection) {
    int port = 0;
    m_server.verdict = 0;
    m_server.onCanAccept = [&] {
        m_gate.pass();
        m_other = otherHandleOf(socketConnectedTo(port));
        EXPECT_TRUE(m_other);
    };
    NySe::UniqueSocket socket = peers::connectTo(m_server.GetPort());
    port = peers::portOf(socket);
    m_gate.open();
    peers::Connection peer(std::move(socket), peers::kNeverStopping);
    EXPECT_TRUE(peer.awaitClose());
}

TEST_F(ServerShutdown, EndsAConnectionWhoseHandlerHasReturned) {
    m_server.onConnect = [this](LoggingWorker& worker) {
        m_other = otherHandleOf(worker.socket());
        EXPECT_TRUE(m_other);
    };
    peers::Connection peer = m_server.connection();
    EXPECT_TRUE(peer.awaitClose());
}

}  // namespace
