#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

using Codes = std::vector<int>;

// Names are chosen so that the hosts file or the rules for names decide: nothing is asked over the
// network.
class ClientLookup : public testing::Test {
  protected:
    std::string addressOf(const std::string& name) {
        m_result = m_client.GetAddressFromName(name.c_str(), m_text, sizeof m_text);
        return m_text;
    }

    ProbeClient m_client;
    char m_text[64] = "untouched";
    int m_result = -1;
};

TEST_F(ClientLookup, TellsAddressesFromNames) {
    EXPECT_EQ(m_client.IsIPAddress("127.0.0.1"), 1);
    EXPECT_EQ(m_client.IsIPAddress("0.0.0.0"), 1);
    EXPECT_EQ(m_client.IsIPAddress("255.255.255.254"), 1);
    EXPECT_EQ(m_client.IsIPAddress("localhost"), 0);
    EXPECT_EQ(m_client.IsIPAddress("127.0.0.256"), 0);
    EXPECT_EQ(m_client.IsIPAddress("255.255.255.255"), 0);
    EXPECT_EQ(m_client.codes, Codes{});
}

TEST_F(ClientLookup, FindsTheAddressOfAName) {
    EXPECT_EQ(addressOf("localhost"), "127.0.0.1");
    EXPECT_EQ(m_result, UTE_SUCCESS);
    EXPECT_EQ(m_client.codes, Codes{0});
}

TEST_F(ClientLookup, LooksUpTheTextBehindTheLastAt) {
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

TEST_F(ClientLookup, ReportsANameThatIsNotFound) {
    EXPECT_EQ(addressOf(std::string(64, 'x')), "untouched");
    EXPECT_EQ(m_result, UTE_NAME_LOOKUP_FAILED);
    EXPECT_EQ(m_client.codes, Codes{UTE_NAME_LOOKUP_FAILED});
}

TEST_F(ClientLookup, RefusesABufferThatIsTooShortForTheAddress) {
    for (int tooShort : {7, 9, 0, -1}) {
        EXPECT_EQ(m_client.GetAddressFromName("localhost", m_text, tooShort), UTE_BUFFER_TOO_SHORT);
        EXPECT_STREQ(m_text, "untouched");
    }
    EXPECT_EQ(m_client.GetAddressFromName("localhost", m_text, 10), UTE_SUCCESS);
    EXPECT_STREQ(m_text, "127.0.0.1");
}

TEST_F(ClientLookup, FindsTheNameOfAnAddress) {
    EXPECT_EQ(m_client.GetNameFromAddress("127.0.0.1", m_text, sizeof m_text), UTE_SUCCESS);
    EXPECT_STREQ(m_text, "localhost");
    EXPECT_EQ(m_client.codes, Codes{0});
}

TEST_F(ClientLookup, RefusesABufferThatIsTooShortForTheName) {
    ASSERT_EQ(m_client.GetNameFromAddress("127.0.0.1", m_text, sizeof m_text), UTE_SUCCESS);
    const int length = static_cast<int>(std::strlen(m_text));
    std::strcpy(m_text, "untouched");
    EXPECT_EQ(m_client.GetNameFromAddress("127.0.0.1", m_text, length), UTE_BUFFER_TOO_SHORT);
    EXPECT_STREQ(m_text, "untouched");
    EXPECT_EQ(m_client.GetNameFromAddress("127.0.0.1", m_text, length + 1), UTE_SUCCESS);
}

TEST_F(ClientLookup, FindsTheAddressOfThisHostByItsName) {
    char name[256];
    ASSERT_EQ(::gethostname(name, sizeof name), 0);
    const std::string expected = addressOf(name);
    ASSERT_EQ(m_result, UTE_SUCCESS);
    m_client.codes.clear();
    char own[30] = "";
    EXPECT_EQ(m_client.GetHostAddress(own, sizeof own, 0), UTE_SUCCESS);
    EXPECT_EQ(own, expected);
    EXPECT_EQ(m_client.codes, (Codes{0, 0})) << "the look-up and the result";
}

TEST_F(ClientLookup, FindsTheAddressOfThisHostByTheSocket) {
    peers::Peer peer(peers::silent());
    ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
    m_client.codes.clear();
    EXPECT_EQ(m_client.GetHostAddress(m_text, sizeof m_text, 1), UTE_SUCCESS);
    EXPECT_STREQ(m_text, "127.0.0.1");
    EXPECT_EQ(m_client.codes, Codes{0}) << "no look-up";
}

TEST_F(ClientLookup, CutsTheAddressOfTheSocket) {
    peers::Peer peer(peers::silent());
    ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetHostAddress(m_text, 5, 1), UTE_SUCCESS);
    EXPECT_STREQ(m_text, "127.");
}

TEST_F(ClientLookup, FallsBackToTheSocketWhenTheNameFails) {
    EXPECT_EQ(m_client.GetHostAddress(m_text, 3, 0), UTE_ERROR) << "no socket either";
    EXPECT_EQ(m_client.codes, (Codes{UTE_BUFFER_TOO_SHORT, UTE_ERROR}));
    peers::Peer peer(peers::silent());
    ASSERT_EQ(m_client.connectTo(peer.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetHostAddress(m_text, 3, 0), UTE_SUCCESS);
    EXPECT_STREQ(m_text, "12");
}

TEST_F(ClientLookup, NeedsASocketWhenAskedForTheSockets) {
    EXPECT_EQ(m_client.GetHostAddress(m_text, sizeof m_text, 1), UTE_ERROR);
    EXPECT_STREQ(m_text, "untouched");
}

}  // namespace
