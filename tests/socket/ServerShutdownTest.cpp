// A connection is shut down before it is closed: its peer sees the end although another handle of
// the server's socket stays open.
#include <gtest/gtest.h>

#include "tests/socket/OtherHandle.h"
#include "tests/socket/ProbeServer.h"

namespace {

// This process's socket that is connected to the port; INVALID_SOCKET when there is none.
SOCKET socketConnectedTo(int port) {
    for (SOCKET socket = 4; socket < 0x4000; socket += 4) {
        sockaddr_in peer{};
        int length = sizeof peer;
        if (::getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &length) == 0 &&
            ::ntohs(peer.sin_port) == port)
            return socket;
    }
    return INVALID_SOCKET;
}

class ServerShutdown : public ServerTest {
  protected:
    void SetUp() override { start(); }
    // The handle is closed after what this gives has been seen.
    bool seesTheEnd(peers::Connection& peer) {
        const bool isClosed = peer.awaitClose();
        return isClosed && m_other;
    }

    NySe::UniqueSocket m_other;
};

TEST_F(ServerShutdown, EndsARefusedConnection) {
    int port = 0;
    m_server.verdict = 0;
    m_server.onCanAccept = [&] {
        m_gate.pass();
        m_other = otherHandleOf(socketConnectedTo(port));
    };
    NySe::UniqueSocket socket = peers::connectTo(m_server.GetPort());
    port = peers::portOf(socket);
    m_gate.open();
    peers::Connection peer(std::move(socket), peers::kNeverStopping);
    EXPECT_TRUE(seesTheEnd(peer));
}

TEST_F(ServerShutdown, EndsAConnectionWhoseHandlerHasReturned) {
    m_server.onConnect = [this](LoggingWorker& worker) {
        m_other = otherHandleOf(worker.socket());
    };
    peers::Connection peer = m_server.connection();
    EXPECT_TRUE(seesTheEnd(peer));
}

}  // namespace
