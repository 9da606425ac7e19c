// The time-outs for real: each test waits as long as the rule says.
#include <chrono>
#include <future>

#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;

template <class Action>
milliseconds timeTaken(Action action) {
    const Clock::time_point start = Clock::now();
    action();
    return duration_cast<milliseconds>(Clock::now() - start);
}

void expectWait(seconds wait, milliseconds taken) {
    EXPECT_GE(taken.count(), milliseconds(wait).count() - 200);
    EXPECT_LE(taken.count(), milliseconds(wait + seconds(8)).count());
}

struct Outcome {
    bool connected;
    bool failed;
    milliseconds taken;
};

Outcome askSilentServer(const AnsweredCall& call) {
    const peers::ResettingPort port;  // accepts nobody, so that nobody answers
    NySeClientApp client;
    Outcome outcome{};
    outcome.connected = client.connect(static_cast<int>(port.port()), "127.0.0.1", -1) == 0;
    outcome.taken = timeTaken([&] { outcome.failed = call.fails(client); });
    return outcome;
}

TEST(ClientCalls, GiveUpOnASilentServerAfter15Seconds) {
    std::vector<std::future<Outcome>> outcomes;
    for (const AnsweredCall& call : answeredCalls()) {
        outcomes.push_back(std::async(std::launch::async, askSilentServer, std::cref(call)));
    }
    for (size_t i = 0; i < outcomes.size(); ++i) {
        SCOPED_TRACE(answeredCalls()[i].name);
        const Outcome outcome = outcomes[i].get();
        EXPECT_TRUE(outcome.connected);
        EXPECT_TRUE(outcome.failed);
        expectWait(seconds(15), outcome.taken);
    }
}

using ClientWaits = ClientTest;

TEST_F(ClientWaits, ServerInformationOfASilentServerTakesTwoWaits) {
    serveRequest(goldenWire("request-getCurrentTime"));
    CStringArray lines;
    expectWait(seconds(30), timeTaken([&] { client.getServerInformation(lines); }));
    EXPECT_EQ(10, lines.GetSize());
}

TEST_F(ClientWaits, AMessageThatStallsGivesUpAfter30Seconds) {
    serveRequest(goldenWire("request-getAllUser"), wireOf<LONG>(100) + "some");
    NySeUserPtrArray users;
    expectWait(seconds(30), timeTaken([&] { client.getAllUser(users); }));
    EXPECT_EQ(0, users.GetSize());
}

// Two pauses, together longer than one time-out: it counts for each part anew.
TEST_F(ClientWaits, AMessageMayPauseLongAndOften) {
    const std::string reply = goldenWire("reply-users");
    serve({{goldenWire("request-getAllUser"),
            {reply.substr(0, 20), reply.substr(20, 20), reply.substr(40)},
            17'000}});
    NySeUserPtrArray users;
    expectWait(seconds(34), timeTaken([&] { client.getAllUser(users); }));
    EXPECT_EQ(2, users.GetSize());
}

}  // namespace
