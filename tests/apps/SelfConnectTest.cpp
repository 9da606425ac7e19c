#include "apps/common/SelfConnect.h"

#include <gtest/gtest.h>

#include "tests/socket/Peers.h"

using apps::isConnectedToItself;

namespace {

class SelfConnect : public ::testing::Test {
  protected:
    static bool connect(const NySe::UniqueSocket& socket, int port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        address.sin_port = ::htons(static_cast<unsigned short>(port));
        return ::connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }

    const peers::WinsockSession winsock;
    const NySe::UniqueSocket socket = peers::bindToLoopback();
};

TEST_F(SelfConnect, IsDetectedWhenBothEndsAreTheSame) {
    ASSERT_TRUE(connect(socket, peers::portOf(socket)));
    char echoed = 0;
    ASSERT_EQ(1, ::send(socket.get(), "x", 1, 0));
    ASSERT_EQ(1, ::recv(socket.get(), &echoed, 1, 0));  // as if somebody were there
    EXPECT_TRUE(isConnectedToItself(socket.get()));
}

TEST_F(SelfConnect, IsNotDetectedWithAnotherPeer) {
    const peers::Peer peer(peers::silent());
    ASSERT_TRUE(connect(socket, static_cast<int>(peer.port())));
    EXPECT_FALSE(isConnectedToItself(socket.get()));
}

TEST_F(SelfConnect, IsNotDetectedWithoutAConnection) {
    EXPECT_FALSE(isConnectedToItself(socket.get()));
}

}  // namespace
