// The time-outs for real: each test waits as long as the rule says.
#include <chrono>
#include <functional>
#include <future>

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

// A call to a server that never answers, and whether it returned its failure value.
struct SilentCall {
    const char* name;
    std::function<bool(NySeClientApp&)> fails;
};

const SilentCall kSilentCalls[] = {
    {"isAlive", [](NySeClientApp& client) { return !client.isAlive(); }},
    {"getVersion", [](NySeClientApp& client) { return client.getVersion() == -1.0; }},
    {"lock", [](NySeClientApp& client) { return !client.lock(_T("part/42"), 0x18); }},
    {"isLockBy",
     [](NySeClientApp& client) {
         NySeUserPtrArray users;
         return !client.isLockBy(_T("part/42"), users) && users.GetSize() == 0;
     }},
    {"getLock",
     [](NySeClientApp& client) {
         NySeLockArray locks;
         client.getLock(locks);
         return locks.GetSize() == 0;
     }},
    {"openConnection",
     [](NySeClientApp& client) { return client.openConnection(_T("Server=a;Db=b")) == -1; }},
    {"getConnection",
     [](NySeClientApp& client) {
         NySeConnectionArray connections;
         client.getConnection(connections);
         return connections.GetSize() == 0;
     }},
    {"isOpenConnectionBy",
     [](NySeClientApp& client) {
         NySeUserPtrArray users;
         client.isOpenConnectionBy(7, users);
         return users.GetSize() == 0;
     }},
    {"getAllUser",
     [](NySeClientApp& client) {
         NySeUserPtrArray users;
         client.getAllUser(users);
         return users.GetSize() == 0;
     }},
    {"getPortClient",
     [](NySeClientApp& client) {
         NySeUser user;
         return client.getPortClient(user) == 0 && user.getPort() == -1;
     }},
    {"getAnotherPort", [](NySeClientApp& client) { return client.getAnotherPort() == -1; }},
    {"updateUserName", [](NySeClientApp& client) { return !client.updateUserName(_T("Anna")); }},
    {"getCurrentTime", [](NySeClientApp& client) { return client.getCurrentTime() == 0; }},
    {"getMachineIdentifiant",
     [](NySeClientApp& client) { return client.getMachineIdentifiant().IsEmpty() != FALSE; }},
    {"getEventListFromEventViewer",
     [](NySeClientApp& client) {
         return client.getEventListFromEventViewer(25).IsEmpty() != FALSE;
     }},
};

struct Outcome {
    bool connected;
    bool failed;
    milliseconds taken;
};

Outcome askSilentServer(const SilentCall& call) {
    const peers::ResettingPort port;  // accepts nobody, so that nobody answers
    NySeClientApp client;
    Outcome outcome{};
    outcome.connected = client.connect(static_cast<int>(port.port()), "127.0.0.1", -1) == 0;
    outcome.taken = timeTaken([&] { outcome.failed = call.fails(client); });
    return outcome;
}

TEST(ClientCalls, GiveUpOnASilentServerAfter15Seconds) {
    std::vector<std::future<Outcome>> outcomes;
    for (const SilentCall& call : kSilentCalls) {
        outcomes.push_back(std::async(std::launch::async, askSilentServer, std::cref(call)));
    }
    for (size_t i = 0; i < outcomes.size(); ++i) {
        SCOPED_TRACE(kSilentCalls[i].name);
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
