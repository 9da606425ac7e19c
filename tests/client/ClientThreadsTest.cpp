// Clients on several threads at a time.
#include <functional>
#include <mutex>
#include <thread>

#include "tests/client/ClientTest.h"
#include "tests/support/Gate.h"

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 30;

int actionOf(const std::string& request) {
    int action = 0;
    request.copy(reinterpret_cast<char*>(&action), sizeof action);
    return action;
}

// Says that it is alive, and names two users to whoever asks for them; until the client closes.
peers::Script answering() {
    return [alive = wireOf<LONG>(NySe::kAliveAnswer),
            users = goldenWire("reply-users")](peers::Connection& client) {
        for (std::string request; !(request = client.receive()).empty();) {
            if (actionOf(request) == NySe::actionIsAlive) client.send(alive);
            if (actionOf(request) == NySe::actionGetAllUser) client.send(users);
        }
    };
}

// The good answers among `kRounds` of each kind.
int countAnswers(NySeClientApp& client, std::mutex& oneAtATime) {
    int count = 0;
    for (int i = 0; i < kRounds; ++i) {
        const std::lock_guard lock(oneAtATime);
        NySeUserPtrArray users;
        client.getAllUser(users);
        count += users.GetSize() == 2 && client.isAlive();
    }
    return count;
}

// Runs `ask` on several threads; the sum of what it returns.
int onAllThreads(const std::function<int()>& ask) {
    std::atomic<int> sum = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back([&] { sum += ask(); });
    for (auto& thread : threads) thread.join();
    return sum;
}

TEST(ClientThreads, EachMayHaveAClientOfItsOwn) {
    const auto ask = [] {
        const peers::Peer server(answering());
        NySeClientApp client;
        std::mutex own;
        return client.connect(static_cast<int>(server.port()), "127.0.0.1", -1) == 0
                   ? countAnswers(client, own)
                   : 0;
    };
    EXPECT_EQ(kThreads * kRounds, onAllThreads(ask));
}

TEST(ClientThreads, MayShareAClientUnderALock) {
    const peers::Peer server(answering());
    NySeClientApp client;
    ASSERT_EQ(0, client.connect(static_cast<int>(server.port()), "127.0.0.1", -1));
    std::mutex shared;
    EXPECT_EQ(kThreads * kRounds, onAllThreads([&] { return countAnswers(client, shared); }));
}

TEST(ClientThreads, MayInterruptACallThatWaits) {
    Gate asked;
    const peers::Peer server([&](peers::Connection& connection) {
        EXPECT_FALSE(connection.receive().empty());
        asked.meet(2);
        EXPECT_TRUE(connection.awaitClose());
    });
    NySeClientApp client;
    ASSERT_EQ(0, client.connect(static_cast<int>(server.port()), "127.0.0.1", -1));
    const ULONGLONG begin = port::milliseconds();
    std::thread thread([&] { EXPECT_FALSE(client.isAlive()); });
    EXPECT_TRUE(asked.meet(2));
    client.interrupt();
    thread.join();
    EXPECT_FALSE(client.isAlive()) << "later calls fail, too";
    EXPECT_LT(port::milliseconds() - begin, 10'000U);
    client.disconnect();
}

}  // namespace
