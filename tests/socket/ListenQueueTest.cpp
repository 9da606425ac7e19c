// How many peers a listening socket holds ready before they are accepted. The stack may add a few
// to the size that it is given.
#include <gtest/gtest.h>

#include "tests/socket/Probes.h"
#include "tests/socket/ProbeServer.h"

namespace {

constexpr int kShort = 1;
constexpr int kLong = 20;

// How many connects to this port are answered while nobody accepts, at most kLong.
int answeredConnects(unsigned int port) {
    return static_cast<int>(peers::connectWhileAnswered(port, kLong).size());
}

int ofAServer(int size) {
    ProbeServer server;
    EXPECT_EQ(server.listen(size), UTE_SUCCESS);
    return answeredConnects(server.GetPort());
}

int ofAClient(int size) {
    ProbeClient client;
    EXPECT_EQ(client.WaitForConnect(0, size, AF_INET, ::inet_addr("127.0.0.1")), UTE_SUCCESS);
    return answeredConnects(static_cast<unsigned int>(client.GetAcceptPort()));
}

TEST(ListenQueue, IsAsLongAsAskedFor) {
    for (int (*queueOf)(int) : {ofAServer, ofAClient}) {
        EXPECT_LT(queueOf(kShort), 5);
        EXPECT_EQ(queueOf(kLong), kLong);
    }
}

}  // namespace
