#include <gtest/gtest.h>

#include "tests/socket/Peers.h"
#include "tests/socket/ProbeClient.h"

namespace {

using Codes = std::vector<int>;

// A label of a host name has at most 63 characters, so that this one is refused without asking
// anybody.
const std::string kImpossibleName(64, 'x');

class ClientConnect : public testing::Test {
  protected:
    int bindAndConnect(unsigned int localPort, unsigned int remotePort) {
        return m_client.ConnectBound(localPort, remotePort, m_loopback, m_loopback, AF_INET,
                                     SOCK_STREAM);
    }
    unsigned int freePort() {
        return static_cast<unsigned int>(peers::portOf(peers::bindToLoopback()));
    }
    int optionOf(int option) {
        int value = -1;
        m_client.GetSocketOption(option, &value);
        return value;
    }
    bool isBlocking() {
        // Readable by the peer's greeting only after it has come: a non-blocking receive fails.
        char byte = 0;
        return ::recv(m_client.GetSocket(), &byte, 1, 0) == 1;
    }

    char m_loopback[10] = "127.0.0.1";
    peers::Peer m_peer{peers::dripping("x", 0)};
    ProbeClient m_client;
};

TEST_F(ClientConnect, FillsAddressAndPorts) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 10), UTE_SUCCESS);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    EXPECT_EQ(m_client.getsockAddr().sin_addr.s_addr, ::inet_addr("127.0.0.1"));
    EXPECT_EQ(::ntohs(m_client.getsockAddr().sin_port), m_peer.port());
    EXPECT_EQ(m_client.GetRemotePort(), static_cast<int>(m_peer.port()));
    sockaddr_in own{};
    int length = sizeof own;
    ASSERT_EQ(::getsockname(m_client.GetSocket(), reinterpret_cast<sockaddr*>(&own), &length), 0);
    EXPECT_EQ(m_client.GetLocalPort(), ::ntohs(own.sin_port));
    EXPECT_NE(m_client.GetLocalPort(), 0);
}

TEST_F(ClientConnect, EndsBlockingWithItsTimeOutsSet) {
    m_client.setRecvTimeOut(7000);
    m_client.setSendTimeOut(8000);
    ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_TRUE(isBlocking());
    EXPECT_EQ(optionOf(SO_RCVTIMEO), 7000);
    EXPECT_EQ(optionOf(SO_SNDTIMEO), 8000);
}

TEST_F(ClientConnect, GivesEachStepToTheFunnel) {
    ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
    // Socket, non-blocking, writable, blocking, two time-outs, the result.
    EXPECT_EQ(m_client.codes, (Codes{0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ClientConnect, LooksUpAHostName) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), "localhost", 10), UTE_SUCCESS);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
}

TEST_F(ClientConnect, LooksUpTheHostOfAUserAndHostPair) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), "somebody@localhost", 10), UTE_SUCCESS);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
}

TEST_F(ClientConnect, ReportsANameThatCannotBeResolved) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), kImpossibleName.c_str(), 10),
              UTE_CONNECT_RESOLVE_FAILED);
    EXPECT_EQ(m_client.codes, (Codes{UTE_NAME_LOOKUP_FAILED, UTE_CONNECT_RESOLVE_FAILED}));
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientConnect, LooksUpTheBroadcastAddressLikeAName) {
    m_client.createFails = true;  // nothing is to be sent there
    EXPECT_EQ(m_client.Connect(m_peer.port(), "255.255.255.255", 0), UTE_SOCK_CREATE_FAILED);
    m_client.codes.clear();
    EXPECT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 0), UTE_SOCK_CREATE_FAILED);
    EXPECT_EQ(m_client.codes, (Codes{UTE_ERROR, UTE_SOCK_CREATE_FAILED}));
    m_client.codes.clear();
    m_client.Connect(m_peer.port(), "255.255.255.255", 0);
    EXPECT_EQ(m_client.codes, (Codes{UTE_SUCCESS, UTE_ERROR, UTE_SOCK_CREATE_FAILED}))
        << "the look-up reports first";
}

TEST_F(ClientConnect, RefusesASecondConnection) {
    ASSERT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
    const SOCKET socket = m_client.GetSocket();
    EXPECT_EQ(m_client.connectTo(m_peer.port()), UTE_SOCK_ALREADY_OPEN);
    EXPECT_EQ(m_client.GetSocket(), socket);
    EXPECT_EQ(m_client.IsConnected(), 1);
}

TEST_F(ClientConnect, ReportsASocketThatCannotBeMade) {
    EXPECT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 10, AF_INET, 77),
              UTE_SOCK_CREATE_FAILED);
    EXPECT_EQ(m_client.codes, (Codes{UTE_ERROR, UTE_SOCK_CREATE_FAILED}));
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientConnect, BlocksWithANegativeTimeOut) {
    ASSERT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", -1), UTE_SUCCESS);
    // Socket, two time-outs, the result: no change of mode, no wait.
    EXPECT_EQ(m_client.codes, (Codes{0, 0, 0, 0}));
    EXPECT_EQ(m_client.GetBlockingMode(), 0);
    EXPECT_TRUE(isBlocking());
}

TEST_F(ClientConnect, LeavesThePortsAloneWhenConnectedAtOnce) {
    ASSERT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", -1), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
    EXPECT_EQ(::ntohs(m_client.getsockAddr().sin_port), m_peer.port());
    EXPECT_EQ(optionOf(SO_RCVTIMEO), 30000);
}

// A datagram socket always connects at once.
TEST_F(ClientConnect, StaysNonBlockingWhenConnectedAtOnceWithATimeOut) {
    ASSERT_EQ(m_client.Connect(m_peer.port(), "127.0.0.1", 10, AF_INET, SOCK_DGRAM), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetBlockingMode(), 1);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
    char byte = 0;
    EXPECT_EQ(::recv(m_client.GetSocket(), &byte, 1, 0), SOCKET_ERROR);
    EXPECT_EQ(::WSAGetLastError(), WSAEWOULDBLOCK);
    EXPECT_EQ(optionOf(SO_RCVTIMEO), 30000);
    EXPECT_EQ(optionOf(SO_SNDTIMEO), 30000);
}

TEST_F(ClientConnect, GivesUpAtOnceWithAZeroTimeOut) {
    peers::UnansweringPort port;
    EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", 0), UTE_CONNECT_TIMEOUT);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
}

TEST_F(ClientConnect, WaitsThroughTheOverriddenWait) {
    m_client.isMute = true;
    EXPECT_EQ(m_client.connectTo(m_peer.port()), UTE_CONNECT_TIMEOUT);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.codes, (Codes{0, 0, UTE_ERROR, UTE_CONNECT_TIMEOUT}));
}

TEST_F(ClientConnect, ReportsARefusal) {
    peers::RefusingPort port;
    EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", -1), UTE_SOCK_CONNECT_FAILED);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
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

TEST_F(ClientConnect, ClosesTheSocketThatDidNotConnect) {
    peers::RefusingPort port;
    MakingClient client;
    for (const long timeOut : {-1, 0}) {
        ASSERT_NE(client.Connect(port.port(), "127.0.0.1", timeOut), UTE_SUCCESS);
        EXPECT_EQ(::closesocket(client.made), SOCKET_ERROR) << "closed already";
    }
}

// Only writability is waited for, and a refused socket never gets there.
TEST_F(ClientConnect, WithATimeOutReportsARefusalAsTheTimeOut) {
    peers::RefusingPort port;
    EXPECT_EQ(m_client.Connect(port.port(), "127.0.0.1", 1), UTE_CONNECT_TIMEOUT);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientConnect, CanConnectAgainAfterAFailure) {
    peers::RefusingPort port;
    ASSERT_EQ(m_client.Connect(port.port(), "127.0.0.1", -1), UTE_SOCK_CONNECT_FAILED);
    EXPECT_EQ(m_client.connectTo(m_peer.port()), UTE_SUCCESS);
}

TEST_F(ClientConnect, BoundTakesTheLocalPort) {
    const unsigned int port = freePort();
    EXPECT_EQ(bindAndConnect(port, m_peer.port()), UTE_SUCCESS);
    EXPECT_EQ(m_client.GetLocalPort(), static_cast<int>(port));
    EXPECT_EQ(m_client.GetRemotePort(), static_cast<int>(m_peer.port()));
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1");
    EXPECT_EQ(::ntohs(m_client.getsockAddr().sin_port), m_peer.port());
    EXPECT_EQ(optionOf(SO_RCVTIMEO), 30000);
    EXPECT_TRUE(isBlocking());
}

TEST_F(ClientConnect, BoundTakesTheLocalAddress) {
    char local[] = "127.0.0.2";
    ASSERT_EQ(m_client.ConnectBound(0, m_peer.port(), local, m_loopback, AF_INET, SOCK_STREAM),
              UTE_SUCCESS);
    sockaddr_in own{};
    int length = sizeof own;
    ASSERT_EQ(::getsockname(m_client.GetSocket(), reinterpret_cast<sockaddr*>(&own), &length), 0);
    EXPECT_EQ(own.sin_addr.s_addr, ::inet_addr("127.0.0.2"));
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1") << "the peer's";
}

TEST_F(ClientConnect, BoundRefusesASecondConnection) {
    ASSERT_EQ(bindAndConnect(0, m_peer.port()), UTE_SUCCESS);
    EXPECT_EQ(bindAndConnect(0, m_peer.port()), UTE_SOCK_ALREADY_OPEN);
}

TEST_F(ClientConnect, BoundReportsASocketThatCannotBeMade) {
    m_client.createFails = true;
    EXPECT_EQ(bindAndConnect(0, m_peer.port()), UTE_SOCK_CREATE_FAILED);
    EXPECT_EQ(m_client.GetSocket(), INVALID_SOCKET);
}

TEST_F(ClientConnect, BoundLeavesTheSocketOpenWhenThePortIsTaken) {
    EXPECT_EQ(bindAndConnect(m_peer.port(), m_peer.port()), UTE_SOCK_BIND_FAILED);
    EXPECT_NE(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
    EXPECT_EQ(bindAndConnect(0, m_peer.port()), UTE_SOCK_ALREADY_OPEN);
    m_client.CloseConnection();
    EXPECT_EQ(bindAndConnect(0, m_peer.port()), UTE_SUCCESS);
}

TEST_F(ClientConnect, BoundLeavesTheSocketOpenWhenRefused) {
    peers::RefusingPort port;
    EXPECT_EQ(bindAndConnect(0, port.port()), UTE_SOCK_CONNECT_FAILED);
    EXPECT_NE(m_client.GetSocket(), INVALID_SOCKET);
    EXPECT_EQ(m_client.GetRemotePort(), 0);
    EXPECT_EQ(m_client.GetLocalPort(), 0);
}

TEST_F(ClientConnect, BoundCutsALongAddress) {
    char remote[] = "127.0.0.1 and more than thirty characters";
    m_client.createFails = true;
    m_client.ConnectBound(0, m_peer.port(), m_loopback, remote, AF_INET, SOCK_STREAM);
    EXPECT_STREQ(m_client.getszAddress(), "127.0.0.1 and more than thirt");
}

}  // namespace
