// The requests that one number answers.
#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

class ClientScalars : public ClientTest, public ::testing::WithParamInterface<ScalarRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    LONG call() { return GetParam().call(client); }
};

INSTANTIATE_TEST_SUITE_P(Request, ClientScalars, ::testing::ValuesIn(scalarRequests()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ClientScalars, AreWhatTheServerSays) {
    std::vector<Step> steps;
    for (const ScalarAnswer& answer : GetParam().answers)
        steps.push_back({request(), {answer.reply}});
    serve(steps);
    for (const ScalarAnswer& answer : GetParam().answers) {
        EXPECT_EQ(answer.result, call()) << shown(answer.reply);
    }
    expectRequestsSent();
}

TEST_P(ClientScalars, FailWhenTheServerClosesAtAnyByte) {
    const std::string good = GetParam().answers.front().reply;
    for (size_t length = 0; length < good.size(); ++length) {
        serveRequest(request(), good.substr(0, length), Then::close);
        EXPECT_EQ(GetParam().failure, call()) << length;
        client.disconnect();
    }
}

TEST_P(ClientScalars, FailInTwoPieces) {
    const std::string good = GetParam().answers.front().reply;
    for (size_t cut = 1; cut < good.size(); ++cut) {
        serve({{request(), {good.substr(0, cut), good.substr(cut)}}});
        EXPECT_EQ(GetParam().failure, call()) << cut;
        client.disconnect();
    }
}

TEST_P(ClientScalars, FailWithoutConnection) {
    EXPECT_EQ(GetParam().failure, call());
}

}  // namespace
