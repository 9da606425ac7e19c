// Senders that mean no good, and very many that do; listeners that are started, connected to and
// destroyed, over and over.
#include <map>
#include <random>

#include "tests/listener/ListenerTest.h"
#include "tests/support/Guarded.h"
#include "tests/support/System.h"

namespace {

class ListenerFlood : public ListenerTest {
  protected:
    // The next good connection is served.
    void expectServes() {
        auto peer = m_listener.connection();
        const size_t before = m_window.count();
        peer.send(frame(54, "good"));
        EXPECT_TRUE(isAlive(peer));
        EXPECT_GT(m_window.awaitMessages(before + 1).size(), before);
    }
};

// Mostly frames, some with lengths that do not fit, some pure noise.
std::string randomFrame(std::mt19937& random) {
    const auto below = [&](int limit) {
        return std::uniform_int_distribution(0, limit - 1)(random);
    };
    std::string body(static_cast<size_t>(below(200)), '\0');
    for (char& byte : body) byte = static_cast<char>(below(256));
    const int action = below(3) == 0 ? static_cast<int>(random()) : below(70) - 2;
    switch (below(8)) {
        case 0:
            return wireOf(action) + wireOf(static_cast<int>(random())) + body;
        case 1:
            return wireOf(action) + wireOf(-below(1000)) + body;
        case 2:
            return body;
        default:
            return frame(action, body);
    }
}

TEST_F(ListenerFlood, SurvivesTenThousandRandomFrames) {
    std::mt19937 random(20241121);
    for (int connection = 0; connection < 200; ++connection) {
        auto peer = m_listener.connection();
        ASSERT_NE(peer.socket(), INVALID_SOCKET);
        for (int i = 0; i < 50; ++i) peer.send(randomFrame(random));
    }
    EXPECT_TRUE(m_listener.awaitWorkers(0));
    EXPECT_TRUE(m_listener.awaitNoMessages());
    EXPECT_GT(m_window.count(), 0u);
    expectServes();
}

TEST_F(ListenerFlood, SurvivesSendersThatDisconnectWithinAMessage) {
    const std::string whole = frame(51, "vanishing");
    for (size_t length = 0; length <= whole.size(); ++length)
        m_listener.connection().send(whole.substr(0, length));
    EXPECT_TRUE(m_listener.awaitWorkers(0));
    expectServes();
}

TEST_F(ListenerFlood, SurvivesASenderThatResets) {
    {
        auto peer = connect();
        peer.send(frame(51, "before") + kProbe);
        char answer;
        ASSERT_EQ(port::receive(peer.socket(), &answer, 1, MSG_PEEK), 1);
    }  // with the answer unread, the close is a reset
    EXPECT_EQ(m_window.awaitMessages(1).at(0).payload(), "before");
    EXPECT_TRUE(m_listener.awaitWorkers(0));
    expectServes();
}

TEST_F(ListenerFlood, DeliversEveryNotificationOnceAndInItsSendersOrder) {
    constexpr int kSenders = 100;
    constexpr int kEach = 200;
    std::vector<peers::Connection> peers;
    for (int sender = 0; sender < kSenders; ++sender) peers.push_back(connect());
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kSenders; ++sender)
        senders.emplace_back([&peer = peers[static_cast<size_t>(sender)], sender] {
            for (int i = 0; i < kEach; ++i)
                peer.send(frame(50 + i % 9, wireOf(sender) + wireOf(i)));
        });
    for (auto& sender : senders) sender.join();
    std::map<std::string, int> next;
    const auto all = m_window.awaitMessages(kSenders * kEach);
    EXPECT_EQ(all.size(), size_t{kSenders * kEach});
    for (const auto& message : all) {
        const int expected = next[message.payload().substr(0, 4)]++;
        ASSERT_EQ(message.bytes.substr(12), wireOf(expected));
        ASSERT_EQ(message.action(), 50 + expected % 9);
    }
    EXPECT_EQ(next.size(), size_t{kSenders});
    for (auto& peer : peers) EXPECT_TRUE(isAlive(peer));
    EXPECT_TRUE(m_listener.awaitNoMessages());
    EXPECT_EQ(m_window.count(), all.size());
}

constexpr int kListeners = 300;
constexpr int kAtATime = 10;

class ListenerStress : public testing::Test {
  protected:
    // One listener from its start to its end, under which its peers vanish in different states.
    void runListener(int number) {
        Guarded<ProbeListener> guarded;
        m_window.attachTo(*guarded);
        ASSERT_TRUE(guarded->start());
        auto first = guarded->connection();
        auto second = guarded->connection();
        first.send(frame(50, "first") + kProbe);
        if (number % 2 == 0) {
            EXPECT_EQ(first.receive(), kAlive);
        }
        if (number % 3 == 0) second.close();
        if (number % 5 == 0) guarded->StopAccept();
        if (number % 7 == 0) guarded->pause(true);
        guarded.destroy();
        if (number % 3 != 0) {
            EXPECT_TRUE(second.awaitClose());
        }
    }
    // Several beside each other, since each ends with a round of its workers.
    void runListeners(int count) {
        std::atomic<int> next = 0;
        std::vector<std::thread> runners;
        for (int i = 0; i < kAtATime; ++i)
            runners.emplace_back([&] {
                for (int number; (number = next++) < count && !HasFailure();) runListener(number);
            });
        for (auto& runner : runners) runner.join();
        m_window.settle();
    }

    peers::WinsockSession m_winsock;
    HostWindow m_window;
};

TEST_F(ListenerStress, LeaksNeitherHandlesNorThreads) {
    runListeners(3 * kAtATime);  // what the system keeps from the first use does not count
    port::sleep(100);
    const size_t handles = handleLevel();
    const int threads = countThreadsAtRest();
    runListeners(kListeners);
    EXPECT_TRUE(eventually([&] { return countThreads() <= threads; }));
    EXPECT_TRUE(eventually([&] { return handleLevel() <= handles + 4; }));
}

}  // namespace
