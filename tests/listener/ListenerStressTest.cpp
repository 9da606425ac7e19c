// Listeners are started, connected to and destroyed, over and over.

#include <gtest/gtest.h>

#include <atomic>
#include <iostream>
#include <thread>
#include <vector>

#include "tests/listener/ListenerTest.h"
#include "tests/support/Guarded.h"
#include "tests/support/System.h"

namespace {

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
    MainWindow m_window;
};

TEST_F(ListenerStress, LeaksNeitherHandlesNorThreads) {
    runListeners(3 * kAtATime);  // what the system keeps from the first use does not count
    port::sleep(100);
    const size_t handles = handleLevel();
    const int threads = countThreadsAtRest();
    runListeners(kListeners);
    EXPECT_TRUE(eventually([&] { return countThreads() <= threads; }));
    EXPECT_TRUE(eventually([&] { return handleLevel() <= handles + 4; }));
    std::cout << "handles " << handles << " to " << handleLevel() << ", threads " << threads
              << " to " << countThreads() << std::endl;
}

}  // namespace
