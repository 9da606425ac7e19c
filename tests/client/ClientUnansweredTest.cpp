// The requests that nothing answers.
#include <set>

#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

class ClientUnanswered : public ClientTest,
                         public ::testing::WithParamInterface<UnansweredRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    void call() { GetParam().call(client); }
};

INSTANTIATE_TEST_SUITE_P(Request, ClientUnanswered, ::testing::ValuesIn(unansweredRequests()),
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

TEST(ClientRequests, LeaveNoneOut) {
    std::set<std::string> listed{"disconnect"};
    for (const AnsweredCall& call : answeredCalls()) listed.insert(call.name);
    for (const UnansweredRequest& request : unansweredRequests()) listed.insert(request.name);
    std::set<std::string> all;
    for (const NySe::RequestKind& request : NySe::kRequests) all.insert(request.name);
    EXPECT_EQ(all, listed);
}

}  // namespace
