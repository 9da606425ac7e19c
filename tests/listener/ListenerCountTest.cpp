// The count of notifications that the host has not consumed.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tests/listener/ListenerTest.h"

namespace {

// Were a message consumed before it is counted, the count would stay above 0.
TEST(ListenerCount, ReturnsToZeroWithAFastWindow) {
    ProbeListener listener;
    MainWindow window(&listener);
    window.attachTo(listener);
    const std::string notification = frame(50);
    constexpr int kEach = 3000;
    std::vector<std::thread> senders;
    for (int i = 0; i < 2; ++i)
        senders.emplace_back([&] {
            for (int n = 0; n < kEach; ++n) {
                CMemFile file;
                file.Write(notification.data(), static_cast<UINT>(notification.size()));
                listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
                if (n % 8 == 0) port::sleep(0);
            }
        });
    for (auto& sender : senders) sender.join();
    EXPECT_EQ(window.awaitMessages(2 * kEach).size(), 2u * kEach);
    EXPECT_TRUE(listener.awaitNoMessages());
    window.detachFrom(listener);
}

TEST(ListenerCount, IsResetWithTheWindow) {
    ProbeListener listener;
    listener.increasePostMsgCount();
    listener.setAppWnd(nullptr);
    EXPECT_EQ(listener.getPostMsgCount(), 0);
    EXPECT_EQ(listener.getAppWnd(), nullptr);
}

TEST(ListenerCount, ChangesLikeTheWindowUnderTheLockOfTheWorkers) {
    ProbeListener listener;
    std::atomic<int> done = 0;
    std::vector<std::thread> threads;
    {
        const ProbeListener::ThreadListLock lock(listener);
        threads.emplace_back([&] { listener.increasePostMsgCount(), ++done; });
        threads.emplace_back([&] { listener.decreasePostMsgCount(), ++done; });
        threads.emplace_back([&] { MainWindow().detachFrom(listener), ++done; });
        port::sleep(100);
        EXPECT_EQ(done, 0);
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(done, 3);
}

}  // namespace
