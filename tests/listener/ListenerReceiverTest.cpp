// A function of the host in place of a window.
#include <stdexcept>

#include "tests/listener/ListenerTest.h"

namespace {

// A function that keeps what it is called with.
class Recorder {
  public:
    NyServerApp::Receiver receiver() {
        return [this](NySe::ActionType action, CMemFile& payload) { receive(action, payload); };
    }
    std::vector<std::string> frames() const {
        const std::lock_guard lock(m_mutex);
        return m_frames;
    }
    bool await(size_t count) const {
        return eventually([&] { return frames().size() >= count; }, kGenerously);
    }

  private:
    void receive(NySe::ActionType action, CMemFile& payload) {
        std::string body(static_cast<size_t>(payload.GetLength()), '\0');
        body.resize(payload.Read(body.data(), static_cast<UINT>(body.size())));
        const std::lock_guard lock(m_mutex);
        m_frames.push_back(frame(action, body));
    }

    mutable std::mutex m_mutex;
    std::vector<std::string> m_frames;
};

// The first call of the function waits at a gate.
class HeldRecorder : public Recorder {
  public:
    ~HeldRecorder() { gate.open(); }
    NyServerApp::Receiver receiver() {
        return [this, record = Recorder::receiver()](NySe::ActionType action, CMemFile& payload) {
            gate.pass();
            record(action, payload);
        };
    }

    Gate gate;
};

class ListenerReceiver : public testing::Test {
  protected:
    // The result is how long the file is afterwards.
    ULONGLONG post(const std::string& content) { return m_listener->post(content); }
    void postNumbers(int first, int last) {
        for (int i = first; i <= last; ++i) post(numbered(i));
    }
    // Numbers for the held function, whose first call is at its gate.
    void postNumbersToHeld(int first, int last) {
        m_listener->setReceiver(m_held.receiver());
        postNumbers(first, last);
        ASSERT_TRUE(m_held.gate.awaitArrivals());
    }
    static std::string numbered(int number) { return frame(50 + number % 9, wireOf(number)); }
    static std::vector<std::string> numbers(int first, int last) {
        std::vector<std::string> all;
        for (int i = first; i <= last; ++i) all.push_back(numbered(i));
        return all;
    }
    int count() { return m_listener->getPostMsgCount(); }
    bool awaitCount(int wanted) {
        return eventually([&] { return count() == wanted; }, kGenerously);
    }
    // Runs the action on another thread. Expects that it ends only once the gate is open.
    void expectWaitsFor(
        Gate& gate, const std::function<void()>& action,
        const std::function<void()>& meanwhile = [] {}) {
        std::atomic<bool> hasEnded = false;
        std::jthread thread([&] {
            action();
            hasEnded = true;
        });
        meanwhile();
        port::sleep(100);
        EXPECT_FALSE(hasEnded);
        gate.open();
    }

    peers::WinsockSession m_winsock;
    Recorder m_recorder;
    HeldRecorder m_held;
    std::unique_ptr<ProbeListener> m_listener = std::make_unique<ProbeListener>();
};

TEST_F(ListenerReceiver, IsCalledWithTheNotificationsOfAConnectionInTheirOrder) {
    m_listener->setReceiver(m_recorder.receiver());
    ASSERT_TRUE(m_listener->start());
    auto peer = m_listener->connection();
    std::string stream;
    for (const std::string& one : numbers(1, 500)) stream += one;
    peer.send(stream + frame(50) + frame(49, "none"));
    ASSERT_TRUE(m_recorder.await(501));
    auto expected = numbers(1, 500);
    expected.push_back(frame(50));
    EXPECT_EQ(m_recorder.frames(), expected);
    EXPECT_TRUE(m_listener->awaitNoMessages());
}

TEST_F(ListenerReceiver, IsCalledOnOneThreadOfTheListenerWithoutItsLock) {
    std::mutex mutex;
    std::vector<DWORD> threads;
    m_listener->setReceiver([&](NySe::ActionType, CMemFile&) {
        std::thread([&] { count(); }).join();
        const std::lock_guard lock(mutex);
        threads.push_back(port::currentThreadId());
    });
    postNumbers(1, 3);
    ASSERT_TRUE(awaitCount(0));
    const std::lock_guard lock(mutex);
    ASSERT_EQ(threads.size(), 3u);
    EXPECT_NE(threads[0], port::currentThreadId());
    EXPECT_EQ(std::count(threads.begin(), threads.end(), threads[0]), 3);
}

TEST_F(ListenerReceiver, IsCalledWithOneNotificationAtATimeForSeveralThreads) {
    constexpr int kThreads = 4;
    constexpr int kEach = 500;
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    m_listener->setReceiver(
        [&, record = m_recorder.receiver()](NySe::ActionType action, CMemFile& payload) {
            most = std::max<int>(most, ++inside);
            record(action, payload);
            --inside;
        });
    std::vector<std::thread> posting;
    for (int thread = 0; thread < kThreads; ++thread)
        posting.emplace_back(
            [&, first = thread * kEach] { postNumbers(first, first + kEach - 1); });
    for (auto& thread : posting) thread.join();
    ASSERT_TRUE(m_recorder.await(kThreads * kEach));
    EXPECT_EQ(most, 1);
    auto received = m_recorder.frames();
    auto expected = numbers(0, kThreads * kEach - 1);
    std::sort(received.begin(), received.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(received, expected);
}

TEST_F(ListenerReceiver, HasAPayloadThatStandsAtItsStartAndCannotGrow) {
    std::atomic<bool> isAsExpected = false;
    m_listener->setReceiver([&](NySe::ActionType action, CMemFile& payload) {
        const bool isWhole = action == 50 && payload.GetLength() == 3 && payload.GetPosition() == 0;
        try {
            payload.Write("more", 4);
        } catch (CMemoryException* error) {
            error->Delete();
            isAsExpected = isWhole;
        }
    });
    post(frame(50, "abc"));
    ASSERT_TRUE(awaitCount(0));
    EXPECT_TRUE(isAsExpected);
}

TEST_F(ListenerReceiver, HasNoActionForWhatIsNoNotification) {
    m_listener->setReceiver(m_recorder.receiver());
    for (const std::string& content : {std::string("x"), std::string(), frame(49, "body")})
        post(content);
    ASSERT_TRUE(m_recorder.await(3));
    EXPECT_EQ(m_recorder.frames(), std::vector<std::string>(3, frame(NySe::noAction)));
    EXPECT_TRUE(awaitCount(0));
}

TEST_F(ListenerReceiver, TakesTheContentOfTheFile) {
    m_listener->setReceiver(m_recorder.receiver());
    EXPECT_EQ(post(frame(51, "body")), 0u);
}

TEST_F(ListenerReceiver, MayThrowAnything) {
    m_listener->setReceiver(
        [&, record = m_recorder.receiver()](NySe::ActionType action, CMemFile& payload) {
            if (action == 51) throw std::runtime_error("of the host");
            if (action == 52) AfxThrowMemoryException();
            if (action == 53) throw action;
            record(action, payload);
        });
    for (int action = 50; action <= 54; ++action) post(frame(action));
    ASSERT_TRUE(awaitCount(0));
    EXPECT_EQ(m_recorder.frames(), (std::vector<std::string>{frame(50), frame(54)}));
}

TEST_F(ListenerReceiver, ConsumesANotificationWhenItReturns) {
    postNumbersToHeld(1, 3);
    port::sleep(50);
    EXPECT_EQ(count(), 3);
    m_held.gate.open();
    EXPECT_TRUE(awaitCount(0));
    EXPECT_EQ(m_held.frames(), numbers(1, 3));
}

TEST_F(ListenerReceiver, IsReplacedAfterItsRunningCallWithoutWhatWaitsForIt) {
    m_listener->setPostMessageLimit(2);
    ASSERT_TRUE(m_listener->start());
    auto peer = m_listener->connection();
    ASSERT_TRUE(m_listener->awaitWorkers(1));
    postNumbersToHeld(1, 3);
    EXPECT_TRUE(m_listener->isPaused());
    expectWaitsFor(
        m_held.gate, [&] { m_listener->setReceiver(m_recorder.receiver()); },
        [&] {
            EXPECT_TRUE(awaitCount(0));
            EXPECT_FALSE(m_listener->isPaused());
        });
    postNumbers(4, 5);
    ASSERT_TRUE(m_recorder.await(2));
    EXPECT_EQ(m_held.frames(), numbers(1, 1));
    EXPECT_EQ(m_recorder.frames(), numbers(4, 5));
    EXPECT_TRUE(awaitCount(0));
}

TEST_F(ListenerReceiver, ConsumesNothingOfItsSuccessor) {
    postNumbersToHeld(1, 1);
    HeldRecorder next;
    expectWaitsFor(
        m_held.gate, [&] { m_listener->setReceiver(next.receiver()); },
        [&] {
            EXPECT_TRUE(awaitCount(0));
            postNumbers(2, 3);
        });
    EXPECT_EQ(count(), 2);
    next.gate.open();
    EXPECT_TRUE(awaitCount(0));
}

// The first one is with the function.
TEST_F(ListenerReceiver, HasTenThousandNotificationsWaitAtMost) {
    postNumbersToHeld(0, 0);
    postNumbers(1, 10001);
    EXPECT_EQ(count(), 10001);
    m_held.gate.open();
    EXPECT_TRUE(m_held.await(10001));
    EXPECT_TRUE(awaitCount(0));
    EXPECT_EQ(m_held.frames(), numbers(0, 10000));
}

TEST_F(ListenerReceiver, Has256MiBWaitAtMost) {
    postNumbersToHeld(0, 0);
    const std::string part(std::size_t{64} << 20, 'x');
    for (int i = 0; i < 5; ++i) post(part);
    EXPECT_EQ(count(), 5);
    m_held.gate.open();
    EXPECT_TRUE(awaitCount(0));
}

TEST_F(ListenerReceiver, MayBeNone) {
    postNumbersToHeld(1, 2);
    expectWaitsFor(m_held.gate, [&] { m_listener->setReceiver(nullptr); });
    EXPECT_EQ(post(numbered(3)), numbered(3).size());
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(m_held.frames(), numbers(1, 1));
}

TEST_F(ListenerReceiver, IsCalledWithAllThatWaitsBeforeTheListenerIsDestroyed) {
    postNumbersToHeld(1, 100);
    expectWaitsFor(m_held.gate, [&] { m_listener.reset(); });
    EXPECT_EQ(m_held.frames(), numbers(1, 100));
}

TEST_F(ListenerReceiver, IsNotCalledOnceTheConnectionsHaveBeenEnded) {
    postNumbersToHeld(1, 2);
    expectWaitsFor(m_held.gate, [&] { m_listener->endConnections(); });
    EXPECT_EQ(m_held.frames(), numbers(1, 2));
    EXPECT_EQ(count(), 0);
    post(numbered(3));
    EXPECT_EQ(count(), 0);
    m_listener.reset();
    EXPECT_EQ(m_held.frames(), numbers(1, 2));
}

// A function that is called once it has been replaced would use what its host has deleted.
TEST_F(ListenerReceiver, IsNotUsedOnceReplacedWhileOtherThreadsPost) {
    std::atomic<bool> isEnding = false;
    std::vector<std::jthread> posting;
    for (int i = 0; i < 2; ++i)
        posting.emplace_back([&] {
            while (!isEnding) post(numbered(1));
        });
    std::atomic<int> late = 0;
    std::atomic<int> calls = 0;
    int misplaced = 0;
    const auto deadline = std::chrono::steady_clock::now() + kGenerously;
    for (int i = 0; i < 1000 || (calls == 0 && std::chrono::steady_clock::now() < deadline); ++i) {
        const auto isReplaced = std::make_shared<std::atomic<bool>>(false);
        m_listener->setReceiver([&, isReplaced](NySe::ActionType, CMemFile&) {
            ++calls;
            late += *isReplaced;
        });
        if (i % 16 == 0) port::sleep(1);
        m_listener->setReceiver(nullptr);
        *isReplaced = true;
        if (i % 16 == 8) port::sleep(1);
        misplaced += count();
    }
    isEnding = true;
    posting.clear();
    EXPECT_GT(calls, 0);
    EXPECT_EQ(late, 0);
    EXPECT_EQ(misplaced, 0) << "each is counted for the function that receives it";
}

}  // namespace
