#include "tests/socket/ProbeServer.h"
#include "tests/support/windows/WinsockStarts.h"

namespace {

TEST(ClientAndWinsock, EachObjectHoldsOneStart) {
    {
        CUT_WSClient client;
        client.Reset();
        EXPECT_EQ(client.Reset(), UTE_SUCCESS);
        EXPECT_EQ(WinsockStarts::count(), 1);
    }
    EXPECT_EQ(::WSACleanup(), SOCKET_ERROR);
    EXPECT_EQ(port::lastSocketError(), WSANOTINITIALISED);
}

class ServerAndWinsock : public testing::Test {
  protected:
    // How many starts of Winsock in this process, since this was made, are not yet cleaned up.
    int starts() const { return WinsockStarts::count() - m_before; }

  private:
    const int m_before = WinsockStarts::count();
};

TEST_F(ServerAndWinsock, StartsOnceForItselfAndOnceForEachListening) {
    {
        ProbeServer server;
        EXPECT_EQ(starts(), 1);
        ASSERT_EQ(server.listenOn(0), 0);
        EXPECT_EQ(starts(), 2);
        for (int i = 0; i < 2; ++i) {
            server.StopAccept();
            EXPECT_EQ(starts(), 1);
        }
    }
    EXPECT_EQ(starts(), 0);
}

TEST_F(ServerAndWinsock, IsNotStartedForAPortThatIsRefused) {
    ProbeServer server;
    ASSERT_EQ(server.listenOn(0), 0);
    server.SetPort(server.GetBoundPort());
    ASSERT_EQ(server.StartAccept(), 0);
    EXPECT_EQ(server.listenOn(0), UTE_ERROR);
    server.StopAccept();
    EXPECT_EQ(starts(), 1);
}

TEST_F(ServerAndWinsock, BalancesOneListeningWithEachStopAndOneWithTheDestructor) {
    {
        ProbeServer server;
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(server.ConnectToPort(0, 5, 99, 0), UTE_SOCK_BIND_FAILED) << "no such family";
        server.StopAccept();
        EXPECT_EQ(starts(), 3);
        server.StopAccept();
    }
    EXPECT_EQ(starts(), 0);
}

}  // namespace
