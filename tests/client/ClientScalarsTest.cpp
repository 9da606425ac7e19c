// The requests that one number answers.
#include <functional>

#include "tests/client/ClientTest.h"

namespace {

struct Answer {
    std::string reply;
    LONG result;
};

struct ScalarRequest {
    const char* name;
    LONG failure;
    std::vector<Answer> answers;
    std::function<LONG(NySeClientApp&)> call;
};

std::vector<Answer> numbersAsTheyAre() {
    std::vector<Answer> answers;
    for (const LONG number : {1L, 0L, -1L, 40125L, LONG_MAX, LONG_MIN}) {
        answers.push_back({wireOf(number), number});
    }
    return answers;
}

// A byte says yes when it is not zero.
std::vector<Answer> yesOrNo() {
    return {{wire("01"), true}, {wire("00"), false}, {wire("02"), true}, {wire("FF"), true}};
}

const ScalarRequest kScalarRequests[] = {
    {"lock", false, yesOrNo(),
     [](NySeClientApp& client) { return client.lock(_T("part/42"), 0x18); }},
    {"openConnection", -1, numbersAsTheyAre(),
     [](NySeClientApp& client) { return client.openConnection(_T("Server=a;Db=b")); }},
    {"getAnotherPort", -1, numbersAsTheyAre(),
     [](NySeClientApp& client) { return client.getAnotherPort(); }},
    {"updateUserName", false, yesOrNo(),
     [](NySeClientApp& client) { return client.updateUserName(_T("Anna")); }},
    {"getCurrentTime", 0, numbersAsTheyAre(),
     [](NySeClientApp& client) { return client.getCurrentTime(); }},
};

class ClientScalars : public ClientTest, public ::testing::WithParamInterface<ScalarRequest> {
  protected:
    std::string request() const { return goldenWire(std::string("request-") + GetParam().name); }
    LONG call() { return GetParam().call(client); }
};

INSTANTIATE_TEST_SUITE_P(Request, ClientScalars, ::testing::ValuesIn(kScalarRequests),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(ClientScalars, AreWhatTheServerSays) {
    std::vector<Step> steps;
    for (const Answer& answer : GetParam().answers) steps.push_back({request(), {answer.reply}});
    serve(steps);
    for (const Answer& answer : GetParam().answers) {
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
