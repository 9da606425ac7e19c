#include "NyServer/socket/CUT_WSClient.h"
#include "tests/client/ClientTest.h"

namespace {

using ClientConnection = ClientTest;

std::string disconnectBytes() {
    return goldenWire("request-disconnect");
}

TEST_F(ClientConnection, SucceedsWithZero) {
    serve({});
    EXPECT_EQ(1, client.IsConnected());
}

TEST_F(ClientConnection, FailsWith90WhenRefused) {
    const peers::RefusingPort port;
    EXPECT_EQ(90, client.connect(static_cast<int>(port.port()), "127.0.0.1", -1));
    EXPECT_EQ(0, client.IsConnected());
}

TEST_F(ClientConnection, FailsWith90WhenTheNameIsUnknown) {
    EXPECT_EQ(90, client.connect(1, "no-such-host.invalid", -1));
}

TEST_F(ClientConnection, NamesTheServerThatRefused) {
    const peers::RefusingPort port;
    EXPECT_EQ(90, client.connect(static_cast<int>(port.port()), "127.0.0.1", -1));
    EXPECT_EQ(port.port(), client.getPort());
    EXPECT_EQ(CString("127.0.0.1"), client.getStrAddress());
    EXPECT_EQ(90, client.connect(1, "no-such-host.invalid", -1));
    EXPECT_EQ(port.port(), client.getPort());
    EXPECT_TRUE(client.getStrAddress().IsEmpty());
}

TEST_F(ClientConnection, AgreesOnASchemaOfItsOwnEachTime) {
    for (int connection = 0; connection < 2; ++connection) {
        serveRequest(goldenWire("request-initializeSchema"), wireOf<LONG>(NySe::schema2015));
        EXPECT_EQ(NySe::noSchema, client.getSchemaType()) << connection;
        client.initializeSchema();
        EXPECT_EQ(NySe::schema2015, client.getSchemaType());
        expectRequestsSent();
    }
    const peers::RefusingPort refusing;
    EXPECT_EQ(90, client.connect(static_cast<int>(refusing.port()), "127.0.0.1", -1));
    EXPECT_EQ(NySe::noSchema, client.getSchemaType());
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

TEST_F(ClientConnection, ResolvesHostNames) {
    const peers::Peer peer(peers::silent());
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "localhost", -1));
    EXPECT_EQ(CString("127.0.0.1"), client.getStrAddress());
}

TEST_F(ClientConnection, SwitchesOffNagle) {
    serve({});
    BOOL noDelay = FALSE;
    int length = sizeof noDelay;
    ASSERT_EQ(0, ::getsockopt(NySeClientAppAccess::socket(client), IPPROTO_TCP, TCP_NODELAY,
                              reinterpret_cast<char*>(&noDelay), &length));
    EXPECT_NE(FALSE, noDelay);
}

TEST_F(ClientConnection, KnowsTheOtherEnd) {
    const peers::Peer peer(peers::silent());
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
    EXPECT_EQ(peer.port(), client.getPort());
    EXPECT_EQ(CString("127.0.0.1"), client.getStrAddress());
}

TEST_F(ClientConnection, KnowsNoOtherEndWithoutOne) {
    EXPECT_EQ(0u, client.getPort());
    EXPECT_TRUE(client.getStrAddress().IsEmpty());
    EXPECT_EQ(0, client.IsConnected());
}

TEST_F(ClientConnection, TellsThisComputersName) {
    WCHAR name[256];
    DWORD length = 256;
    ASSERT_TRUE(::GetComputerNameW(name, &length));
    EXPECT_EQ(CString(name), client.getHostName());
}

TEST_F(ClientConnection, DisconnectSendsABareCodeAndCloses) {
    std::string received;
    peers::Peer peer(peers::collecting(received));
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
    EXPECT_TRUE(client.disconnect());
    ASSERT_EQ(1, peer.waitForServed(1));
    EXPECT_EQ(disconnectBytes(), received);
    EXPECT_EQ(0, client.IsConnected());
}

TEST_F(ClientConnection, DisconnectWithoutConnectionReturnsQuietly) {
    EXPECT_TRUE(client.disconnect());
}

TEST_F(ClientConnection, CanConnectAgainAfterDisconnect) {
    serveRequest(goldenWire("request-isAlive"), wireOf<LONG>(512));
    EXPECT_TRUE(client.isAlive());
    expectRequestsSent();

    const peers::Peer second(peers::silent());
    EXPECT_EQ(0, client.connect(static_cast<int>(second.port()), "127.0.0.1", -1));
    EXPECT_EQ(1, client.IsConnected());
}

// The first socket is given up as it stands; a connect that kept it would be refused.
TEST_F(ClientConnection, ConnectingAgainWithoutDisconnectStartsAnew) {
    const peers::Peer first(peers::silent());
    const peers::Peer second(peers::silent());
    ASSERT_EQ(0, client.connect(static_cast<int>(first.port()), "127.0.0.1", -1));
    const UniqueSocket abandoned(NySeClientAppAccess::socket(client));
    EXPECT_EQ(0, client.connect(static_cast<int>(second.port()), "127.0.0.1", -1));
    EXPECT_NE(abandoned.get(), NySeClientAppAccess::socket(client));
    EXPECT_EQ(second.port(), client.getPort());
}

TEST_F(ClientConnection, DisconnectTellsAFailedClose) {
    const peers::Peer peer(peers::silent());
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
    ASSERT_EQ(0, ::closesocket(NySeClientAppAccess::socket(client)));
    EXPECT_FALSE(client.disconnect());
}

TEST_F(ClientConnection, NoticesThatThePeerClosed) {
    peers::Peer peer(peers::sendingAndClosing());
    ASSERT_EQ(0, client.connect(static_cast<int>(peer.port()), "127.0.0.1", -1));
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
