// Threads that end while others wait for them, or that cannot start.
#include <gtest/gtest.h>
#include <pthread.h>

#include <thread>

#include "NyServer/base/port/Port.h"

namespace {

TEST(ThreadExit, PassesItsRobustMutexToTheThreadThatWaits) {
    const port::RobustMutex mutex;
    port::Event isLocked(false);
    std::thread owner([&] {
        mutex.lock();
        isLocked.set();
        port::sleep(50);  // the other one waits by then
    });
    ASSERT_TRUE(isLocked.wait(30'000));
    mutex.lock();
    mutex.lock();
    mutex.unlock();
    mutex.unlock();
    owner.join();
    std::thread([&] {
        mutex.lock();
        mutex.unlock();
    }).join();
}

TEST(ThreadStart, FailsWhenTheSystemHasNoThread) {
    pthread_attr_t before;
    ASSERT_EQ(::pthread_getattr_default_np(&before), 0);
    pthread_attr_t huge = before;
    ::pthread_attr_setstacksize(&huge, std::size_t{1} << 48);
    ASSERT_EQ(::pthread_setattr_default_np(&huge), 0);
    const auto procedure = [](void*) {};
    port::Thread thread;
    EXPECT_EQ(thread.start(procedure, nullptr), port::kNoThread);
    EXPECT_EQ(port::startThread(procedure, nullptr), port::kNoThread);
    EXPECT_FALSE(thread.waitForEnd(0));
    ::pthread_setattr_default_np(&before);
}

}  // namespace
