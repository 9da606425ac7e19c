// The requests that nothing answers.
#include <functional>

#include "NyServer/records/NySeMessage.h"
#include "tests/client/ClientTest.h"

namespace {

struct UnansweredRequest {
    const char* name;
    std::function<void(NySeClientApp&)> call;
};

NySeMessage savedMessage() {
    NySeMessage message;
    message.setStrMessage(_T("saved"));
    return message;
}

const UnansweredRequest kUnansweredRequests[] = {
    {"unLock", [](NySeClientApp& client) { client.unLock(_T("part/42")); }},
    {"closeConnection", [](NySeClientApp& client) { client.closeConnection(3); }},
    {"sendConnectionData",
     [](NySeClientApp& client) {
         NySeMessage message = savedMessage();
         client.sendConnectionData(1, 2, message);
     }},
    {"sendUserData",
     [](NySeClientApp& client) {
         NySeUser user = goldenUser();
         NySeMessage message = savedMessage();
         client.sendUserData(user, message);
     }},
    {"sendAllUserData",
     [](NySeClientApp& client) {
         NySeMessage message = savedMessage();
         client.sendAllUserData(message);
     }},
    {"shutDownServer", &NySeClientApp::shutDownServer},
    {"verifyCoherancy", &NySeClientApp::verifyCoherancy},
};

class ClientUnanswered : public ClientTest,
                         public ::testing::WithParamInterface<UnansweredRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    void call() { GetParam().call(client); }
};

INSTANTIATE_TEST_SUITE_P(Request, ClientUnanswered, ::testing::ValuesIn(kUnansweredRequests),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ClientUnanswered, SendAndTakeNothing) {
    expectTakesOnly(request(), "", [this] { call(); });
}

TEST_P(ClientUnanswered, ReturnQuietlyWithoutConnection) {
    call();
    EXPECT_EQ(0, client.IsConnected());
}

TEST_P(ClientUnanswered, ReturnQuietlyWhenTheServerIsGone) {
    serveRequest("", "", Then::close);
    char byte;
    EXPECT_EQ(0, ::recv(NySeClientAppAccess::socket(client), &byte, 1, 0));
    for (int i = 0; i < 3; ++i) call();
}

}  // namespace
