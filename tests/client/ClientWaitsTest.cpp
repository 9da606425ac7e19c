// The time-outs for real: each test waits as long as the rule says.
#include <chrono>
#include <future>

#include "tests/client/ClientRequests.h"
#include "tests/client/ClientTest.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// `action` takes that time.
template <class Action>
void expectWait(seconds wait, Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GE(taken / milliseconds(1), wait / milliseconds(1) - 200);
    EXPECT_LE(taken / milliseconds(1), (wait + seconds(8)) / milliseconds(1));
}

TEST(ClientCalls, GiveUpOnASilentServerAfter15Seconds) {
    std::vector<std::future<void>> asking;
    for (const ClientRequest& request : clientRequests()) {
        if (!request.isAnswered()) continue;
        asking.push_back(std::async(std::launch::async, [&request] {
            SCOPED_TRACE(request.name);
            const peers::ResettingPort port;  // accepts nobody, so that nobody answers
            NySeClientApp client;
            EXPECT_EQ(0, client.connect(static_cast<int>(port.port()), "127.0.0.1", -1));
            expectWait(seconds(15), [&] { EXPECT_EQ(request.failure, request.call(client)); });
        }));
    }
    EXPECT_LT(16U, asking.size());
}

using ClientWaits = ClientTest;

TEST_F(ClientWaits, ServerInformationOfASilentServerTakesTwoWaits) {
    serveRequest(goldenWire("request-getCurrentTime"));
    CStringArray lines;
    expectWait(seconds(30), [&] { client.getServerInformation(lines); });
    EXPECT_EQ(10, lines.GetSize());
}

TEST_F(ClientWaits, AMessageThatStallsGivesUpAfter30Seconds) {
    serveRequest(goldenWire("request-getAllUser"), wireOf<LONG>(100) + "some");
    NySeUserPtrArray users;
    expectWait(seconds(30), [&] { client.getAllUser(users); });
    EXPECT_EQ(0, users.GetSize());
}

// Two pauses, together longer than one time-out: it counts for each part anew.
TEST_F(ClientWaits, AMessageMayPauseLongAndOften) {
    const std::string reply = goldenWire("reply-users");
    serve({{goldenWire("request-getAllUser"),
            {reply.substr(0, 20), reply.substr(20, 20), reply.substr(40)},
            17'000}});
    NySeUserPtrArray users;
    expectWait(seconds(34), [&] { client.getAllUser(users); });
    EXPECT_EQ(2, users.GetSize());
}

}  // namespace
