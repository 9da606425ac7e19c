#include "tests/client/ClientTest.h"

namespace {

using ClientSession = ClientTest;

TEST_F(ClientSession, SchemaIsZeroUntilAgreed) {
    EXPECT_EQ(NySe::noSchema, client.getSchemaType());
}

TEST_F(ClientSession, InitializeSchemaTakesWhatTheServerGrants) {
    serveRequest(goldenWire("request-initializeSchema"), wireOf<LONG>(2010));
    client.initializeSchema();
    EXPECT_EQ(2010u, client.getSchemaType());
    expectRequestsSent();
}

TEST_F(ClientSession, InitializeSchemaKeepsTheSchemaWhenNotConnected) {
    client.initializeSchema();
    EXPECT_EQ(NySe::noSchema, client.getSchemaType());
}

TEST_F(ClientSession, InitializeSchemaKeepsTheSchemaWhenTheServerCloses) {
    serveRequest(goldenWire("request-initializeSchema"), "", Then::close);
    client.initializeSchema();
    EXPECT_EQ(NySe::noSchema, client.getSchemaType());
}

TEST_F(ClientSession, InitializeSchemaTakesTheBytesOfAShortAnswer) {
    const std::string answer = wireOf<LONG>(0x01020304);
    serveRequest(goldenWire("request-initializeSchema"), answer.substr(0, 3), Then::close);
    client.initializeSchema();
    EXPECT_EQ(0x020304u, client.getSchemaType());
}

TEST_F(ClientSession, IsAliveOnlyForAnswer512) {
    const std::string request = goldenWire("request-isAlive");
    serve({{request, {wireOf<LONG>(512)}},
           {request, {wireOf<LONG>(511)}},
           {request, {wireOf<LONG>(0)}},
           {request, {wireOf<LONG>(-512)}},
           {request, {wireOf<LONG>(0x01000200)}}});
    EXPECT_TRUE(client.isAlive());
    for (int i = 0; i < 4; ++i) EXPECT_FALSE(client.isAlive()) << i;
    expectRequestsSent();
}

TEST_F(ClientSession, IsNotAliveWhenTheServerCloses) {
    serveRequest(goldenWire("request-isAlive"), "", Then::close);
    EXPECT_FALSE(client.isAlive());
}

TEST_F(ClientSession, IsNotAliveWhenTheServerResets) {
    peers::ResettingPort port;
    ASSERT_EQ(0, client.connect(static_cast<int>(port.port()), "127.0.0.1", -1));
    port.resetConnections();
    EXPECT_FALSE(client.isAlive());
}

TEST_F(ClientSession, IsNotAliveWithoutConnection) {
    EXPECT_FALSE(client.isAlive());
}

TEST_F(ClientSession, AScalarInTwoPiecesCountsAsMissing) {
    const std::string answer = wireOf<LONG>(512);
    serve({{goldenWire("request-isAlive"), {answer.substr(0, 2), answer.substr(2)}}});
    EXPECT_FALSE(client.isAlive());
}

TEST_F(ClientSession, VersionIsTheDoubleThatComes) {
    serveRequest(goldenWire("request-getVersion"), wireOf(7.25));
    EXPECT_EQ(7.25, client.getVersion());
    expectRequestsSent();
}

TEST_F(ClientSession, VersionIsMinusOneForAShortAnswer) {
    serveRequest(goldenWire("request-getVersion"), wireOf(7.25).substr(0, 7), Then::close);
    EXPECT_EQ(-1.0, client.getVersion());
}

TEST_F(ClientSession, VersionIsMinusOneAndNothingIsReadWhenItCannotBeAskedFor) {
    const std::string pending = wireOf(7.25);
    serveRequest("", pending);
    const SOCKET socket = NySeClientAppAccess::socket(client);
    ASSERT_EQ(0, ::shutdown(socket, SD_SEND));
    EXPECT_EQ(-1.0, client.getVersion());
    std::string received(pending.size(), ' ');
    EXPECT_EQ(static_cast<int>(pending.size()),
              ::recv(socket, received.data(), static_cast<int>(received.size()), MSG_WAITALL));
    EXPECT_EQ(shown(pending), shown(received));
}

TEST_F(ClientSession, VersionIsMinusOneWhenTheServerCloses) {
    serveRequest(goldenWire("request-getVersion"), "", Then::close);
    EXPECT_EQ(-1.0, client.getVersion());
}

TEST_F(ClientSession, VersionIsMinusOneWithoutConnection) {
    EXPECT_EQ(-1.0, client.getVersion());
}

}  // namespace
