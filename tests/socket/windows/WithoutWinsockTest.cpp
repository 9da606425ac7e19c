// What the socket layer answers after the last WSACleanup of the program. In a program of its own,
// since every socket of the process is dead meanwhile.
#include "tests/socket/Probes.h"
#include "tests/socket/ProbeServer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Ends all starts of Winsock, and makes them good again in the end.
class NoWinsock {
  public:
    NoWinsock() {
        while (::WSACleanup() == 0) ++m_starts;
    }
    ~NoWinsock() {
        WSADATA data;
        while (m_starts-- > 0) ::WSAStartup(MAKEWORD(2, 0), &data);
    }
    NoWinsock(const NoWinsock&) = delete;
    NoWinsock& operator=(const NoWinsock&) = delete;

  private:
    int m_starts = 0;
};

// Its select fails as WSANOTINITIALISED, or as WSAENOTSOCK where the clean-up closes all sockets.
TEST(WithoutWinsock, AClientIsNotConnected) {
    char loopback[] = "127.0.0.1";
    ProbeClient client;
    ASSERT_EQ(client.CreateUDPSocket(0, 9, loopback, loopback), UTE_SUCCESS);
    ASSERT_EQ(client.IsConnected(), 1);
    client.codes.clear();
    const NoWinsock none;
    EXPECT_EQ(client.IsConnected(), 0);
    EXPECT_THAT(client.codes, IsEmpty()) << "the mode is not touched";
}

TEST(WithoutWinsock, AServerCannotWakeItself) {
    ProbeServer server;
    const NoWinsock none;
    char loopback[] = "127.0.0.1";
    EXPECT_EQ(server.TempConnect(9, loopback), UTE_SOCK_CREATE_FAILED);
    EXPECT_THAT(server.codes, ElementsAre(UTE_SOCK_CREATE_FAILED));
}

}  // namespace
