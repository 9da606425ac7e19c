// A request that cannot be sent while the connection can still be read.
#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

// All that comes until the other end closes.
std::string readToTheEnd(SOCKET socket) {
    std::string bytes;
    char buffer[1024];
    for (int count; (count = ::recv(socket, buffer, sizeof buffer, 0)) > 0;) {
        bytes.append(buffer, static_cast<size_t>(count));
    }
    return bytes;
}

// An answer taken for the request that failed would be missing from a later one.
TEST(ClientCalls, ReadNothingWhenTheRequestCannotBeSent) {
    for (const AnsweredCall& call : answeredCalls()) {
        SCOPED_TRACE(call.name);
        const peers::Peer server(peers::sending(call.answer));
        NySeClientApp client;
        ASSERT_EQ(0, client.connect(static_cast<int>(server.port()), "127.0.0.1", -1));
        const SOCKET socket = NySeClientAppAccess::socket(client);
        ASSERT_EQ(0, ::shutdown(socket, SD_SEND));
        EXPECT_TRUE(call.fails(client));
        EXPECT_EQ(shown(call.answer), shown(readToTheEnd(socket)));
    }
}

}  // namespace
