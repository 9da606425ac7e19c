#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/Probes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Names are chosen so that the hosts file or the rules for names decide: nothing is asked over the
// network.
class ClientLookup : public testing::Test {
  protected:
    // The address or name, or the text that was there before when it is not found.
    std::string addressOf(const std::string& name, int maxLen = 64) {
        m_result = m_client.GetAddressFromName(name.c_str(), m_text, maxLen);
        return m_text;
    }
    std::string nameOfLoopback(int maxLen = 64) {
        std::strcpy(m_text, "untouched");
        m_result = m_client.GetNameFromAddress("127.0.0.1", m_text, maxLen);
        return m_text;
    }
    std::string hostAddress(int maxLen, int useSocket) {
        m_result = m_client.GetHostAddress(m_text, maxLen, useSocket);
        return m_text;
    }
    void connect() {
        ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
        m_client.codes.clear();
    }

    peers::Peer m_peer{peers::silent()};
    ProbeClient m_client;
    char m_text[64] = "untouched";
    int m_result = -1;
};

TEST_F(ClientLookup, DistinguishesAddressesFromNames) {
    for (const char* address : {"127.0.0.1", "0.0.0.0", "255.255.255.254"})
        EXPECT_EQ(m_client.IsIPAddress(address), 1) << address;
    for (const char* name : {"localhost", "127.0.0.256", "255.255.255.255"})
        EXPECT_EQ(m_client.IsIPAddress(name), 0) << name;
    EXPECT_THAT(m_client.codes, IsEmpty());
}

TEST_F(ClientLookup, FindsTheAddressOfANameAndTheNameOfAnAddress) {
    EXPECT_EQ(addressOf("localhost"), "127.0.0.1");
    EXPECT_EQ(m_result, UTE_SUCCESS);
    EXPECT_EQ(nameOfLoopback(), "localhost");
    EXPECT_EQ(m_result, UTE_SUCCESS);
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0));
}

TEST_F(ClientLookup, LooksUpTheTextAfterTheLastAt) {
    EXPECT_EQ(addressOf("somebody@localhost"), "127.0.0.1");
    EXPECT_EQ(addressOf("a@" + std::string(64, 'x') + "@localhost"), "127.0.0.1");
    EXPECT_EQ(m_result, UTE_SUCCESS);
}

// The octal form of 127, so long that with the '@' it is no label of a name any more.
TEST_F(ClientLookup, KeepsAnAtInTheFirstPosition) {
    const std::string paddedLoopback = std::string(60, '0') + "177.0.0.1";
    ASSERT_EQ(addressOf(paddedLoopback), "127.0.0.1");
    ASSERT_EQ(addressOf("a@" + paddedLoopback), "127.0.0.1");
    addressOf("@" + paddedLoopback);
    EXPECT_EQ(m_result, UTE_NAME_LOOKUP_FAILED);
}

TEST_F(ClientLookup, RefusesABufferThatIsTooShort) {
    for (const int tooShort : {7, 9, 0, -1}) {
        EXPECT_EQ(addressOf("localhost", tooShort), "untouched");
        EXPECT_EQ(m_result, UTE_BUFFER_TOO_SHORT);
    }
    EXPECT_EQ(addressOf("localhost", 10), "127.0.0.1");
    EXPECT_EQ(nameOfLoopback(9), "untouched");
    EXPECT_EQ(m_result, UTE_BUFFER_TOO_SHORT);
    EXPECT_EQ(nameOfLoopback(10), "localhost");
}

TEST_F(ClientLookup, FindsTheAddressOfThisHostByItsName) {
    char name[256];
    ASSERT_EQ(::gethostname(name, sizeof name), 0);
    const std::string expected = addressOf(name);
    ASSERT_EQ(m_result, UTE_SUCCESS);
    m_client.codes.clear();
    std::strcpy(m_text, "");
    EXPECT_EQ(hostAddress(30, 0), expected);
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0)) << "the look-up and the result";
}

TEST_F(ClientLookup, FindsTheAddressOfThisHostByTheSocketAndCutsIt) {
    EXPECT_EQ(hostAddress(64, 1), "untouched");
    EXPECT_EQ(m_result, UTE_ERROR) << "no socket";
    connect();
    EXPECT_EQ(hostAddress(64, 1), "127.0.0.1");
    EXPECT_EQ(m_result, UTE_SUCCESS);
    EXPECT_THAT(m_client.codes, ElementsAre(0)) << "no look-up";
    EXPECT_EQ(hostAddress(5, 1), "127.");
}

TEST_F(ClientLookup, FallsBackToTheSocketWhenTheNameFails) {
    hostAddress(3, 0);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_BUFFER_TOO_SHORT, UTE_ERROR)) << "no socket either";
    connect();
    EXPECT_EQ(hostAddress(3, 0), "12");
    EXPECT_EQ(m_result, UTE_SUCCESS);
}

}  // namespace
