// How many peers a listening socket holds ready before they are accepted. The stack may add a few
// to the size that it is given.
#include <gtest/gtest.h>

#include "tests/socket/Probes.h"
#include "tests/socket/ProbeServer.h"
#include "tests/socket/QueuedConnections.h"

namespace {

constexpr int kShort = 1;
constexpr int kLong = 20;

// How many connects are answered while nobody accepts, at most kLong.
int answeredConnects(unsigned int port) {
    return static_cast<int>(peers::connectWhileAnswered(port, kLong).size());
}

class ListenQueue : public testing::Test {
  protected:
    static int ofAServer(int size) {
        ProbeServer server;
        EXPECT_EQ(server.listen(size), UTE_SUCCESS);
        return answeredConnects(server.GetPort());
    }
    static int ofAClient(int size) {
        ProbeClient client;
        EXPECT_EQ(client.WaitForConnect(0, size, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
        return answeredConnects(static_cast<unsigned int>(client.GetAcceptPort()));
    }

    peers::WinsockSession m_winsock;
};

TEST_F(ListenQueue, OfAServerIsAsLongAsAskedFor) {
    EXPECT_LT(ofAServer(kShort), 5);
    EXPECT_EQ(ofAServer(kLong), kLong);
}

TEST_F(ListenQueue, OfAClientIsAsLongAsAskedFor) {
    EXPECT_LT(ofAClient(kShort), 5);
    EXPECT_EQ(ofAClient(kLong), kLong);
}

}  // namespace
