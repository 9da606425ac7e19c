// The count of notifications that the host has not consumed, and what is stopped by it.
#include "tests/listener/ListenerTest.h"

namespace {

// The window consumes what the test lets it.
class ListenerBackPressure : public ListenerTest {
  protected:
    void SetUp() override {
        ListenerTest::SetUp();
        m_window.hold();
        connect(2);
    }

    void connect(int count) {
        for (int i = 0; i < count; ++i) m_peers.push_back(m_listener.connection());
        ASSERT_TRUE(m_listener.awaitWorkers(static_cast<int>(m_peers.size())));
    }
    void post(int times = 1) {
        for (int i = 0; i < times; ++i) m_listener.post(frame(50, "x"));
    }
    bool awaitBacklog(int count) {
        return eventually([&] { return m_listener.getPostMsgCount() == count; }, kGenerously);
    }
    // Until that many are left. REQUIRES: no more are posted meanwhile.
    void consumeAllBut(int left) {
        m_window.consume(m_listener.getPostMsgCount() - left);
        ASSERT_TRUE(awaitBacklog(left));
    }
    void expectPausedAbove(int limit) {
        const size_t before = m_window.count();
        const size_t posted = static_cast<size_t>(limit) + 2;
        post(limit);
        EXPECT_EQ(m_listener.pauses(), kNone);
        post();
        EXPECT_EQ(m_listener.pauses(), kAll);
        post();  // which goes on during a pause
        EXPECT_EQ(m_listener.getPostMsgCount(), limit + 2);
        consumeAllBut(1);
        EXPECT_EQ(m_listener.pauses(), kAll);
        consumeAllBut(0);
        EXPECT_EQ(m_listener.pauses(), kNone);
        EXPECT_EQ(m_window.awaitMessages(before + posted).size(), before + posted);
    }

    static inline const std::vector<bool> kAll{true, true};
    static inline const std::vector<bool> kNone{false, false};

    std::vector<peers::Connection> m_peers;
};

TEST_F(ListenerBackPressure, PausesAboveTheLimitAndResumesAfterTheLast) {
    expectPausedAbove(static_cast<int>(m_listener.postMessageLimit()));
}

TEST_F(ListenerBackPressure, PausesAgainAsBefore) {
    m_listener.setPostMessageLimit(27);
    expectPausedAbove(27);
    expectPausedAbove(27);
}

TEST_F(ListenerBackPressure, ASurplusConsumptionResumesAndCountsNothing) {
    m_listener.pause(true);
    m_listener.decreasePostMsgCount();
    EXPECT_EQ(m_listener.pauses(), kNone);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerBackPressure, AWorkerThatStartsDuringAPauseReadsUntilTheNextCall) {
    m_listener.setPostMessageLimit(9);
    post(10);
    connect(1);
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{false, true, true}));
    m_peers.back().send(kProbe);
    EXPECT_EQ(m_peers.back().receive(), kAlive);
    post();
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{true, true, true}));
}

TEST_F(ListenerBackPressure, StopsItsSenderUntilTheWindowHasConsumedTheBacklog) {
    m_listener.setPostMessageLimit(90);
    std::string stream;
    for (int i = 0; i < 200; ++i) stream += frame(50 + i % 9, wireOf(i) + wireOf(i));
    m_peers[0].send(stream);
    ASSERT_TRUE(awaitBacklog(91));
    port::sleep(250);
    EXPECT_EQ(m_listener.getPostMsgCount(), 91);
    consumeAllBut(1);
    port::sleep(250);
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
    m_window.consume();
    ASSERT_TRUE(awaitBacklog(91));
    port::sleep(250);
    EXPECT_EQ(m_listener.getPostMsgCount(), 91);
    m_window.consume(91);
    ASSERT_TRUE(awaitBacklog(18));
    consumeAllBut(0);
    const auto all = m_window.awaitMessages(200);
    ASSERT_EQ(all.size(), 200u);
    for (size_t i = 0; i < 200; ++i)
        EXPECT_EQ(all[i].payload().substr(0, 4), wireOf(static_cast<int>(i)));
}

// A worker that noticed only at the end of a round would take nearly all of the round's 100 ms. The
// shortest of many, since a busy machine adds to each.
using ListenerResume = ListenerTest;

TEST_F(ListenerResume, IsNoticedAtOnce) {
    auto peer = connect();
    ULONGLONG shortest = ~0ull;
    for (int i = 0; i < 50 && shortest > 30; ++i) {
        m_listener.pause(true);
        peer.send(kProbe);
        port::sleep(20);
        const auto start = port::milliseconds();
        m_listener.pause(false);
        EXPECT_EQ(peer.receive(), kAlive);
        shortest = std::min(shortest, port::milliseconds() - start);
    }
    EXPECT_LE(shortest, 30u);
}

TEST_F(ListenerBackPressure, ASenderIsStoppedByTheTransportAndLosesNothing) {
    constexpr int kFrames = 512;  // more than any transport takes unread
    const std::string body(65528, 'b');
    m_window.detachFrom(m_listener);  // which ends the hold
    m_window.attachTo(m_listener);
    m_listener.pause(true);
    std::atomic<int> sent = 0;
    std::jthread sender([&] {
        for (; sent < kFrames; ++sent) m_peers[0].send(frame(54, body));
    });
    int before = -1;
    while (before != sent) {
        before = sent;
        port::sleep(500);
    }
    EXPECT_LT(sent, kFrames);
    EXPECT_EQ(m_window.count(), 0u);
    m_listener.pause(false);
    const auto all = m_window.awaitMessages(kFrames);
    ASSERT_EQ(all.size(), size_t{kFrames});
    for (const auto& message : all) EXPECT_TRUE(message.payload() == body);
}

// Other workers than the listener's own may be in the list.
class PlainWorker : public CUT_WSThread {
  public:
    void OnConnect() override {
        char byte;
        Receive(&byte, 1, 0);
    }
};
class PlainListener : public ProbeListener {
  public:
    ~PlainListener() override { endConnections(); }

  protected:
    CUT_WSThread* CreateInstance() override { return new PlainWorker; }
};

TEST(ListenerBackPressureOfOthers, DoesNotAffectWorkersOfOtherKinds) {
    const peers::WinsockSession winsock;
    PlainListener listener;
    ASSERT_TRUE(listener.start());
    auto peer = listener.connection();
    ASSERT_TRUE(listener.awaitWorkers(1));
    listener.pause(true);
    peer.close();
    EXPECT_TRUE(listener.awaitWorkers(0));
}

// Were a message consumed before it is counted, the count would stay above 0.
TEST(ListenerCount, ReturnsToZeroWithAFastWindow) {
    ProbeListener listener;
    HostWindow window(&listener);
    window.attachTo(listener);
    constexpr int kEach = 3000;
    std::vector<std::thread> senders;
    for (int i = 0; i < 2; ++i)
        senders.emplace_back([&] {
            for (int n = 0; n < kEach; ++n) {
                listener.post(frame(50));
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
        threads.emplace_back([&] { HostWindow().detachFrom(listener), ++done; });
        port::sleep(100);
        EXPECT_EQ(done, 0);
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(done, 3);
}

}  // namespace
