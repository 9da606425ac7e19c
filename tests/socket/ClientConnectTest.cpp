#include <gmock/gmock.h>

#include "tests/socket/LocalConnection.h"
#include "tests/socket/Probes.h"

namespace {

using testing::ElementsAre;

// A label of a host name has at most 63 characters, so that this one is refused without asking
// anybody.
const std::string kImpossibleName(64, 'x');

class ClientConnect : public testing::Test {
  protected:
    int connect(const std::string& host = "127.0.0.1", long timeOut = 10) {
        return m_client.Connect(m_peer.port(), host.c_str(), timeOut);
    }
    int connectBound(unsigned int localPort, unsigned int remotePort) {
        return m_client.ConnectBound(localPort, remotePort, m_loopback, m_loopback, AF_INET,
                                     SOCK_STREAM);
    }
    int connectBound() { return connectBound(0, m_peer.port()); }
    bool isBlocking() {
        // Readable by the peer's greeting only after it has come: a non-blocking receive fails.
        char byte = 0;
        return port::receive(m_client.GetSocket(), &byte, 1, 0) == 1;
    }
    void expectTimeOuts(int receive, int send) {
        EXPECT_EQ(m_client.optionOf(SO_RCVTIMEO), receive);
        EXPECT_EQ(m_client.optionOf(SO_SNDTIMEO), send);
    }
    void expectNoPorts() {
        EXPECT_EQ(m_client.GetRemotePort(), 0);
        EXPECT_EQ(m_client.GetLocalPort(), 0);
    }
    void expectNoSocket() { EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET); }
    void expectPeersAddress() {
        EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
        EXPECT_EQ(m_client.getsockAddr().sin_addr.s_addr, ::inet_addr("127.0.0.1"));
        EXPECT_EQ(ntohs(m_client.getsockAddr().sin_port), m_peer.port());
    }

    char m_loopback[10] = "127.0.0.1";
    peers::Peer m_peer{peers::sending("x")};
    ProbeClient m_client;
};

TEST_F(ClientConnect, FillsAddressAndPorts) {
    EXPECT_EQ(connect(), UTE_SUCCESS);
    expectPeersAddress();
    EXPECT_EQ(m_client.GetRemotePort(), static_cast<int>(m_peer.port()));
    EXPECT_EQ(m_client.GetLocalPort(), ntohs(port::localAddress(m_client.GetSocket()).sin_port));
    EXPECT_NE(m_client.GetLocalPort(), 0);
}

TEST_F(ClientConnect, EndsBlockingWithItsTimeOutsSet) {
    m_client.setRecvTimeOut(7000);
    m_client.setSendTimeOut(8000);
    ASSERT_EQ(connect(), UTE_SUCCESS);
    // Socket, non-blocking, writable, blocking, two time-outs, the result.
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_TRUE(isBlocking());
    expectTimeOuts(7000, 8000);
}

TEST_F(ClientConnect, LooksUpAHostNameAndTheHostOfAUserAndHostPair) {
    for (const char* name : {"localhost", "somebody@localhost"}) {
        EXPECT_EQ(connect(name), UTE_SUCCESS);
        EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
        m_client.CloseConnection();
    }
}

TEST_F(ClientConnect, ReportsANameThatCannotBeResolved) {
    EXPECT_EQ(connect(kImpossibleName), UTE_CONNECT_RESOLVE_FAILED);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_NAME_LOOKUP_FAILED, UTE_CONNECT_RESOLVE_FAILED));
    expectNoSocket();
}

TEST_F(ClientConnect, LooksUpTheBroadcastAddressLikeAName) {
    m_client.createFails = true;  // nothing is to be sent there
    EXPECT_EQ(connect("127.0.0.1", 0), UTE_SOCK_CREATE_FAILED);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_ERROR, UTE_SOCK_CREATE_FAILED));
    m_client.codes.clear();
    EXPECT_EQ(connect("255.255.255.255", 0), UTE_SOCK_CREATE_FAILED);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_SUCCESS, UTE_ERROR, UTE_SOCK_CREATE_FAILED))
        << "the look-up reports first";
}

TEST_F(ClientConnect, ReportsASocketThatCannotBeCreated) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 10, AF_INET, 77),
              UTE_SOCK_CREATE_FAILED);
    EXPECT_THAT(m_client.codes, ElementsAre(UTE_ERROR, UTE_SOCK_CREATE_FAILED));
    expectNoSocket();
    m_client.createFails = true;
    EXPECT_EQ(connectBound(), UTE_SOCK_CREATE_FAILED);
    expectNoSocket();
}

TEST_F(ClientConnect, BlocksWithANegativeTimeOutAndLeavesThePortsAlone) {
    ASSERT_EQ(connect("127.0.0.1", -1), UTE_SUCCESS);
    // Socket, two time-outs, the result: no change of mode, no wait.
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0, 0, 0));
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_TRUE(isBlocking());
    expectPeersAddress();
    expectNoPorts();
    expectTimeOuts(30000, 30000);
}

// A datagram socket always connects at once.
TEST_F(ClientConnect, StaysNonBlockingWhenConnectedAtOnceWithATimeOut) {
    ASSERT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 10, AF_INET, SOCK_DGRAM), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetBlockingMode(), 1);
    EXPECT_FALSE(isBlocking());
    EXPECT_EQ(port::lastSocketError(), WSAEWOULDBLOCK);
    expectNoPorts();
    expectTimeOuts(30000, 30000);
}

TEST_F(ClientConnect, GivesUpAtOnceWithAZeroTimeOut) {
    peers::UnansweringPort port;
    EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", 0), UTE_CONNECT_TIMEOUT);
    expectNoSocket();
    expectNoPorts();
}

TEST_F(ClientConnect, WaitsThroughTheOverriddenWait) {
    m_client.isMute = true;
    EXPECT_EQ(connect(), UTE_CONNECT_TIMEOUT);
    expectNoSocket();
    EXPECT_THAT(m_client.codes, ElementsAre(0, 0, UTE_ERROR, UTE_CONNECT_TIMEOUT));
}

// Tells which socket it made last.
class MakingClient : public CUT_WSClient {
  public:
    SOCKET made = INVALID_SOCKET;
    int CreateSocket(SOCKET& s, int family, int type, int protocol) override {
        const int result = CUT_WSClient::CreateSocket(s, family, type, protocol);
        made = s;
        return result;
    }
};

// Only writability is waited for, and a refused socket never gets there.
TEST_F(ClientConnect, ReportsARefusalAsTheTimeOutIfThereIsOneAndCanConnectAgain) {
    peers::RefusingPort port;
    MakingClient client;
    for (const long timeOut : {-1, 0, 1}) {
        EXPECT_EQ(client.Connect(port.port(), "127.0.0.1", timeOut),
                  timeOut < 0 ? UTE_SOCK_CONNECT_FAILED : UTE_CONNECT_TIMEOUT);
        EXPECT_EQ(client.GetSocket(), INVALID_SOCKET);
        EXPECT_FALSE(port::closeSocket(client.made)) << "closed already";
    }
    EXPECT_EQ(client.Connect(m_peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
}

TEST_F(ClientConnect, BoundTakesTheLocalPort) {
    const unsigned int port = peers::freePort();
    EXPECT_EQ(connectBound(port, m_peer.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetLocalPort(), static_cast<int>(port));
    EXPECT_EQ(m_client.GetRemotePort(), static_cast<int>(m_peer.port()));
    expectPeersAddress();
    expectTimeOuts(30000, 30000);
    EXPECT_TRUE(isBlocking());
}

TEST_F(ClientConnect, BoundTakesTheLocalAddress) {
    char local[] = "127.0.0.2";
    ASSERT_EQ(m_client.ConnectBound(0, m_peer.port(), local, m_loopback, AF_INET, SOCK_STREAM),
              UTE_SUCCESS);
    EXPECT_EQ(port::localAddress(m_client.GetSocket()).sin_addr.s_addr, ::inet_addr("127.0.0.2"));
    expectPeersAddress();
}

TEST_F(ClientConnect, BoundLeavesTheSocketOpenWhenItFails) {
    peers::RefusingPort port;
    for (const auto& [local, remote, result] :
         {std::tuple{m_peer.port(), m_peer.port(), UTE_SOCK_BIND_FAILED},
          {0u, port.port(), UTE_SOCK_CONNECT_FAILED}}) {
        EXPECT_EQ(connectBound(local, remote), result);
        EXPECT_NE(m_client.GetSocket(), INVALID_SOCKET);
        expectNoPorts();
        EXPECT_EQ(connectBound(), UTE_SOCK_ALREADY_OPEN);
        m_client.CloseConnection();
    }
    EXPECT_EQ(connectBound(), UTE_SUCCESS);
}

TEST_F(ClientConnect, BoundCutsALongAddress) {
    char remote[] = "127.0.0.1 and more than thirty characters";
    m_client.createFails = true;
    m_client.ConnectBound(0, m_peer.port(), m_loopback, remote, AF_INET, SOCK_STREAM);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1 and more than thirt");
}

}  // namespace
