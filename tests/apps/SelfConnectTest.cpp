#include "apps/common/SelfConnect.h"

#include <gtest/gtest.h>

#include "tests/socket/Peers.h"

using apps::isConnectedToItself;

namespace {

class SelfConnect : public ::testing::Test {
  protected:
    static bool connect(const NySe::UniqueSocket& socket, unsigned int number) {
        return port::connectTo(socket.get(), peers::loopbackAddress(number));
    }

    const peers::WinsockSession winsock;
    const NySe::UniqueSocket socket = peers::bindToLoopback();
};

TEST_F(SelfConnect, IsDetectedWhenBothEndsAreTheSame) {
    ASSERT_TRUE(connect(socket, static_cast<unsigned int>(peers::portOf(socket))));
    char echoed = 0;
    ASSERT_EQ(1, port::send(socket.get(), "x", 1, 0));
    ASSERT_EQ(1, port::receive(socket.get(), &echoed, 1, 0));  // as if somebody were there
    EXPECT_TRUE(isConnectedToItself(socket.get()));
}

TEST_F(SelfConnect, IsNotDetectedWithAnotherPeer) {
    const peers::Peer peer(peers::silent());
    ASSERT_TRUE(connect(socket, peer.port()));
    EXPECT_FALSE(isConnectedToItself(socket.get()));
}

TEST_F(SelfConnect, IsNotDetectedWithoutAConnection) {
    EXPECT_FALSE(isConnectedToItself(socket.get()));
}

}  // namespace
