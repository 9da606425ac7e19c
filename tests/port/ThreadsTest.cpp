#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "NyServer/base/port/Port.h"
#include "tests/support/Gate.h"

namespace {

constexpr DWORD kLong = 30000;  // ms

// Another thread that takes and releases a lock. It stays behind if it never gets it, and only
// then: where std::thread stands on winpthreads, a thread that starts while a detached one ends may
// never run.
template <class Mutex>
class Rival {
  public:
    explicit Rival(const std::shared_ptr<Mutex>& mutex)
        : m_thread([mutex, hasHadIt = m_hasHadIt] {
              mutex->lock();
              *hasHadIt = true;
              mutex->unlock();
          }) {}
    ~Rival() {
        if (*m_hasHadIt)
            m_thread.join();
        else
            m_thread.detach();
    }

    bool getsIt() const {
        return eventually([this] { return m_hasHadIt->load(); }, std::chrono::seconds(30));
    }
    bool waits() const {
        port::sleep(100);
        return !*m_hasHadIt;
    }

  private:
    std::shared_ptr<std::atomic<bool>> m_hasHadIt = std::make_shared<std::atomic<bool>>(false);
    std::thread m_thread;
};

template <class Mutex>
class PortMutex : public testing::Test {
  protected:
    std::shared_ptr<Mutex> m_mutex = std::make_shared<Mutex>();
};

using Mutexes = testing::Types<port::RecursiveMutex, port::RobustMutex>;
TYPED_TEST_SUITE(PortMutex, Mutexes);

TYPED_TEST(PortMutex, IsReleasedByTheLastUnlockOfItsOwner) {
    this->m_mutex->lock();
    this->m_mutex->lock();
    this->m_mutex->unlock();
    const Rival<TypeParam> rival(this->m_mutex);
    EXPECT_TRUE(rival.waits());
    this->m_mutex->unlock();
    EXPECT_TRUE(rival.getsIt());
}

TEST(RobustMutex, ExcludesOthersAfterAThreadThatEndedWithIt) {
    const auto mutex = std::make_shared<port::RobustMutex>();
    std::thread([mutex] { mutex->lock(); }).join();
    ASSERT_TRUE(Rival(mutex).getsIt());
    mutex->lock();
    const Rival next(mutex);
    EXPECT_TRUE(next.waits());
    mutex->unlock();
    EXPECT_TRUE(next.getsIt());
}

// The milliseconds that a call takes.
template <class Call>
ULONGLONG durationOf(Call call) {
    const ULONGLONG start = port::milliseconds();
    call();
    return port::milliseconds() - start;
}

TEST(Event, IsSetForAllThatWaitAndAfterThem) {
    port::Event event(false);
    Gate gate;
    std::atomic<int> found = 0;
    const auto wait = [&] {
        gate.meet(3);
        found += event.wait(kLong);
    };
    std::thread first(wait);
    std::thread second(wait);
    gate.meet(3);
    port::sleep(100);
    const ULONGLONG duration = durationOf([&] {
        event.set();
        first.join();
        second.join();
    });
    EXPECT_LT(duration, kLong / 2);
    EXPECT_EQ(found, 2);
    EXPECT_TRUE(event.wait(0));
    event.reset();
    EXPECT_FALSE(event.wait(0));
    EXPECT_TRUE(port::Event(true).wait(0));
}

constexpr ULONGLONG kTick = 20;  // ms by which the system's clock may be behind

TEST(Event, IsWaitedForAsLongAsSaid) {
    const port::Event event(false);
    for (const DWORD time : {0u, 10u, 999u, 1100u}) {
        const ULONGLONG duration = durationOf([&] { EXPECT_FALSE(event.wait(time)); });
        EXPECT_GE(duration + kTick, time);
        EXPECT_LT(duration, time + kLong);
    }
}

TEST(Sleep, LastsAsLongAsSaid) {
    for (const DWORD time : {0u, 10u, 1100u})
        EXPECT_GE(durationOf([&] { port::sleep(time); }) + kTick, time);
}

TEST(Thread, HasEndedWhenItsProcedureHas) {
    EXPECT_FALSE(port::Thread().waitForEnd(0)) << "not started";
    Gate gate;
    port::Thread thread;
    ASSERT_NE(thread.start([](void* held) { static_cast<Gate*>(held)->pass(); }, &gate),
              port::kNoThread);
    ASSERT_TRUE(gate.awaitArrivals());
    EXPECT_FALSE(thread.waitForEnd(10));
    gate.open();
    EXPECT_TRUE(thread.waitForEnd(kLong));
}

TEST(Thread, HasANumberOfItsOwn) {
    DWORD other = 0;
    std::thread([&] { other = port::currentThreadId(); }).join();
    EXPECT_NE(other, 0u);
    EXPECT_NE(port::currentThreadId(), 0u);
    EXPECT_NE(port::currentThreadId(), other);
}

}  // namespace
