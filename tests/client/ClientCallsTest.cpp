// What the client's requests send, and what they make of the answers.
#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

using Answers = std::vector<ClientRequest::Answer>;

class ClientCalls : public ClientTest, public ::testing::WithParamInterface<ClientRequest> {
  protected:
    std::string call() { return GetParam().call(client); }

    // Each on a connection of its own.
    void expectResults(const Answers& answers) {
        for (const auto& [pieces, result] : answers) {
            SCOPED_TRACE(shown(pieces.front()) + " and " + std::to_string(pieces.size() - 1));
            serve({{GetParam().request, pieces}}, Then::close);
            EXPECT_EQ(result, call());
            client.disconnect();
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Request, ClientCalls, ::testing::ValuesIn(clientRequests()),
                         [](const auto& test) { return test.param.name; });

TEST_P(ClientCalls, SendTheirBytesAndReadOnlyTheirReply) {
    const std::string isAlive = goldenWire("request-isAlive");
    for (const auto& [pieces, result] : GetParam().answers) {
        SCOPED_TRACE(shown(pieces.front()));
        serve({{GetParam().request, {pieces.front() + wireOf<LONG>(NySe::kAliveAnswer)}},
               {isAlive, {}}});
        EXPECT_EQ(result, call());
        EXPECT_TRUE(client.isAlive());
        expectRequestsSent();
    }
}

TEST_P(ClientCalls, FailOnABrokenReply) {
    expectResults(GetParam().broken);
}

TEST_P(ClientCalls, TakeMessagesInPiecesButScalarsAtOnce) {
    expectResults(GetParam().pieces);
}

TEST_P(ClientCalls, FailWithoutConnection) {
    EXPECT_EQ(GetParam().failure, call());
    EXPECT_EQ(0, client.IsConnected());
}

TEST_P(ClientCalls, FailWhenTheServerResets) {
    peers::ResettingPort port;
    connectTo(port);
    port.resetConnections();
    EXPECT_EQ(GetParam().failure, call());
}

TEST_P(ClientCalls, ReturnWithoutAnErrorWhenTheServerHasClosed) {
    serveRequest("", "", Then::close);
    char byte;
    EXPECT_EQ(0, port::receive(NySeClientAppAccess::socket(client), &byte, 1, 0));
    for (int i = 0; i < 3; ++i) call();
}

// An answer taken for the request that failed would be missing from a later one.
TEST_P(ClientCalls, ReadNothingWhenTheRequestCannotBeSent) {
    const std::string answer = GetParam().answers.front().pieces.front();
    serveRequest("", answer);
    const SOCKET socket = NySeClientAppAccess::socket(client);
    ASSERT_TRUE(port::finishSending(socket));
    EXPECT_EQ(GetParam().failure, call());
    std::string unread(answer.size() + 1, '\0');
    const int length = static_cast<int>(unread.size());
    EXPECT_EQ(length - 1, port::receive(socket, unread.data(), length, MSG_WAITALL));
    EXPECT_EQ(shown(answer + '\0'), shown(unread));
}

// The request, but for its last number.
std::string requestUpToItsNumber(const std::string& name) {
    const std::string request = goldenWire("request-" + name);
    return request.substr(0, request.size() - sizeof(LONG));
}

using ClientLocks = ClientTest;

TEST_F(ClientLocks, AllBitsOfTheShareModeAreSent) {
    serveRequest(requestUpToItsNumber("lock") + wire("FF FF FF FF"), wire("01"));
    EXPECT_TRUE(client.lock(_T("part/42"), 0xFFFFFFFF));
    expectRequestsSent();
}

using ClientEvents = ClientTest;

TEST_F(ClientEvents, AreRequestedWithTheArgumentUnchanged) {
    const std::string request = requestUpToItsNumber("getEventListFromEventViewer");
    const std::vector<int> values{0, 1, -1, INT32_MAX, INT32_MIN};
    std::vector<Step> steps;
    for (const int value : values)
        steps.push_back({request + wireOf<LONG>(value), {goldenWire("reply-string")}});
    serve(steps);
    for (const int value : values) client.getEventListFromEventViewer(value);
    expectRequestsSent();
}

}  // namespace
