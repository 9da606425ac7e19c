// Options whose values the system represents in another way.
#include <gtest/gtest.h>

#include "tests/socket/LocalConnection.h"

namespace {

class SocketOption : public testing::Test {
  protected:
    // The value of the option after it was set.
    int stored(int option, int value) {
        EXPECT_EQ(port::setSocketOption(m_socket.get(), option, &value, sizeof value), 0);
        return peers::optionOf(m_socket.get(), option);
    }

    peers::WinsockSession m_winsock;
    NySe::UniqueSocket m_socket{port::createSocket(AF_INET, SOCK_STREAM, 0)};
};

TEST_F(SocketOption, OfATimeOutIsInMilliseconds) {
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO})
        for (const int value : {0, 40, 1000, 1500, 30000}) EXPECT_EQ(stored(option, value), value);
}

TEST_F(SocketOption, OfABufferIsTheSizeThatWasSet) {
    for (const int option : {SO_RCVBUF, SO_SNDBUF})
        for (const int value : {20000, 30000}) EXPECT_EQ(stored(option, value), value);
}

TEST_F(SocketOption, OfThePendingErrorIsADescribedNumber) {
    const peers::RefusingPort nobody;
    EXPECT_EQ(peers::optionOf(m_socket.get(), SO_ERROR), 0);
    ASSERT_TRUE(port::setBlocking(m_socket.get(), false));
    ASSERT_FALSE(port::connectTo(m_socket.get(), peers::loopbackAddress(nobody.port())));
    EXPECT_EQ(port::waitForConnect(m_socket.get(), 1'000'000), port::Readiness::failed);
    EXPECT_EQ(peers::optionOf(m_socket.get(), SO_ERROR), WSAECONNREFUSED);
}

}  // namespace
