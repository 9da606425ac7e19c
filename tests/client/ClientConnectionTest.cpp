#include "tests/client/ClientTest.h"

namespace {

class ClientConnection : public ClientTest {
  protected:
    void expectRefused(int port, const char* host) {
        EXPECT_EQ(90, client.connect(port, host, -1));
        EXPECT_EQ(0, client.IsConnected());
        EXPECT_EQ(NySe::noSchema, client.getSchemaType());
    }
    void expectOtherEnd(unsigned port, const char* address) const {
        EXPECT_EQ(port, client.getPort());
        EXPECT_EQ(CString(address), client.getStrAddress());
    }

    peers::RefusingPort refusing;
};

TEST_F(ClientConnection, FailsWith90WhenRefusedAndNamesTheServer) {
    expectRefused(static_cast<int>(refusing.port()), "127.0.0.1");
    expectOtherEnd(refusing.port(), "127.0.0.1");
}

TEST_F(ClientConnection, FailsWith90WhenTheNameIsUnknown) {
    expectRefused(static_cast<int>(refusing.port()), "127.0.0.1");
    expectRefused(1, "no-such-host.invalid");
    expectOtherEnd(refusing.port(), "");
}

TEST_F(ClientConnection, AgreesOnASchemaOfItsOwnEachTime) {
    for (int connection = 0; connection < 2; ++connection) {
        serveRequest(goldenWire("request-initializeSchema"), wireOf<LONG>(NySe::schema2015));
        EXPECT_EQ(NySe::noSchema, client.getSchemaType()) << connection;
        client.initializeSchema();
        EXPECT_EQ(NySe::schema2015, client.getSchemaType());
        expectRequestsSent();
    }
    expectRefused(static_cast<int>(refusing.port()), "127.0.0.1");
}

TEST_F(ClientConnection, IgnoresTheTimeOut) {
    for (const int timeout : {-1, 0, 1, 15}) {
        NySeClientApp other;
        const peers::Peer peer(peers::silent());
        EXPECT_EQ(0, other.connect(static_cast<int>(peer.port()), "127.0.0.1", timeout)) << timeout;
        // A limited connect switches the socket to non-blocking, and then back with the ports
        // known.
        const CUT_WSClient& transport = NySeClientAppAccess::transport(other);
        EXPECT_EQ(0, transport.GetBlockingMode());
        EXPECT_EQ(0, transport.GetRemotePort());
    }
}

TEST_F(ClientConnection, ReturnsThePeersNameOrAddress) {
    const peers::Peer peer(peers::silent());
    for (const char* host : {"127.0.0.1", "localhost"}) {
        ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), host, -1));
        EXPECT_EQ(1, client.IsConnected());
        expectOtherEnd(peer.port(), "127.0.0.1");
        client.disconnect();
    }
}

TEST_F(ClientConnection, SwitchesOffNagle) {
    serve({});
    int noDelay = 0;
    socklen_t length = sizeof noDelay;
    ASSERT_EQ(0, ::getsockopt(NySeClientAppAccess::socket(client), IPPROTO_TCP, TCP_NODELAY,
                              reinterpret_cast<char*>(&noDelay), &length));
    EXPECT_NE(0, noDelay);
}

TEST_F(ClientConnection, HasNoPeerWithoutAConnection) {
    expectOtherEnd(0, "");
    EXPECT_EQ(0, client.IsConnected());
    EXPECT_TRUE(client.disconnect());
}

TEST_F(ClientConnection, ReturnsThisComputersName) {
    const CString name(port::computerName().c_str());
    EXPECT_FALSE(name.IsEmpty());
    EXPECT_EQ(name, client.getHostName());
}

TEST_F(ClientConnection, DisconnectSendsABareCodeAndCloses) {
    serve({});
    expectRequestsSent();
    EXPECT_EQ(0, client.IsConnected());
}

TEST_F(ClientConnection, CanConnectAgainAfterDisconnect) {
    for (int i = 0; i < 2; ++i) {
        serveRequest(goldenWire("request-isAlive"), wireOf<LONG>(512));
        EXPECT_TRUE(client.isAlive());
        expectRequestsSent();
    }
}

// The first socket is given up as it stands; a connect that kept it would be refused.
TEST_F(ClientConnection, ConnectingAgainWithoutDisconnectStartsAgain) {
    const peers::Peer first(peers::silent());
    const peers::Peer second(peers::silent());
    connectTo(first);
    const NySe::UniqueSocket abandoned(NySeClientAppAccess::socket(client));
    connectTo(second);
    EXPECT_NE(abandoned.get(), NySeClientAppAccess::socket(client));
    EXPECT_EQ(second.port(), client.getPort());
}

TEST_F(ClientConnection, DisconnectReportsAFailedClose) {
    const peers::ResettingPort port;  // accepts nobody: another socket could get the number
    connectTo(port);
    ASSERT_TRUE(port::closeSocket(NySeClientAppAccess::socket(client)));
    EXPECT_FALSE(client.disconnect());
}

TEST_F(ClientConnection, NoticesThatThePeerClosed) {
    peers::Peer peer(peers::sendingAndClosing());
    connectTo(peer);
    ASSERT_EQ(1, peer.waitForServed(1));
    EXPECT_EQ(0, client.IsConnected());
}

// A caller keeps at most one of the copies alive to destruction: the other is given up undestroyed.
TEST_F(ClientConnection, CopySharesTheSocket) {
    serveRequest(goldenWire("request-isAlive"), wireOf<LONG>(512));
    alignas(NySeClientApp) unsigned char memory[sizeof(NySeClientApp)];
    NySeClientApp* copy = new (memory) NySeClientApp(client);
    EXPECT_EQ(NySeClientAppAccess::socket(client), NySeClientAppAccess::socket(*copy));
    EXPECT_TRUE(copy->isAlive());
}

}  // namespace
