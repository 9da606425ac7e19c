#include <gtest/gtest.h>

#include "tests/listener/LimitSetting.h"
#include "tests/listener/ListenerTest.h"

namespace {

// The window takes its messages and tells nobody; the test consumes them.
class ListenerBackPressure : public testing::Test {
  protected:
    void SetUp() override {
        m_listener.setAppWnd(m_window.wnd());
        ASSERT_TRUE(m_listener.start());
        connect(2);
    }
    void TearDown() override { m_listener.setAppWnd(nullptr); }

    void connect(int count) {
        for (int i = 0; i < count; ++i) m_peers.push_back(m_listener.connection());
        ASSERT_TRUE(m_listener.awaitWorkers(static_cast<int>(m_peers.size())));
    }
    void post(int times = 1) {
        for (int i = 0; i < times; ++i) {
            CMemFile file;
            file.Write("x", 1);
            m_listener.postMessageToMainFrame(NySe::_TM_NYSERVERMESSAGE, file);
        }
    }
    void consume(int times = 1) {
        for (int i = 0; i < times; ++i) m_listener.decreasePostMsgCount();
    }
    void expectPausedAbove(int limit) {
        const size_t before = m_window.count();
        const size_t posted = static_cast<size_t>(limit) + 1;
        post(limit);
        EXPECT_EQ(m_listener.pauses(), kNone);
        post();
        EXPECT_EQ(m_listener.pauses(), kAll);
        EXPECT_EQ(m_window.awaitMessages(before + posted).size(), before + posted);
        consume(limit);
        EXPECT_EQ(m_listener.pauses(), kAll);
        consume();
        EXPECT_EQ(m_listener.pauses(), kNone);
    }

    static inline const std::vector<bool> kAll{true, true};
    static inline const std::vector<bool> kNone{false, false};

    peers::WinsockSession m_winsock;
    LimitSetting m_setting{3600};
    ProbeListener m_listener;
    MainWindow m_window;
    std::vector<peers::Connection> m_peers;
};

TEST_F(ListenerBackPressure, PausesAbove3240AndReleasesWithTheLast) {
    expectPausedAbove(3240);
}

TEST_F(ListenerBackPressure, PausesAgainAsBefore) {
    m_setting.set(30);
    expectPausedAbove(27);
    expectPausedAbove(27);
}

TEST_F(ListenerBackPressure, PausesWithEachMessageWhenTheLimitIsNone) {
    m_setting.set(1);
    expectPausedAbove(0);
    expectPausedAbove(0);
}

TEST_F(ListenerBackPressure, PostsGoOnDuringAPauseUntilTheLastIsConsumed) {
    m_setting.set(10);
    post(12);
    EXPECT_EQ(m_listener.getPostMsgCount(), 12);
    EXPECT_EQ(m_window.awaitMessages(12).size(), 12u);
    consume(11);
    EXPECT_EQ(m_listener.pauses(), kAll);
    consume();
    EXPECT_EQ(m_listener.pauses(), kNone);
}

TEST_F(ListenerBackPressure, ASurplusConsumptionReleasesAndCountsNothing) {
    m_listener.pause(true);
    consume();
    EXPECT_EQ(m_listener.pauses(), kNone);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

TEST_F(ListenerBackPressure, AWorkerThatComesDuringAPauseReadsUntilTheNextCall) {
    m_setting.set(10);
    post(10);
    connect(1);
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{false, true, true}));
    m_peers.back().send(kProbe);
    EXPECT_EQ(m_peers.back().receive(), kAlive);
    post();
    EXPECT_EQ(m_listener.pauses(), (std::vector<bool>{true, true, true}));
}

TEST_F(ListenerBackPressure, HoldsItsSenderBackUntilTheWindowHasCaughtUp) {
    m_setting.set(100);
    std::string stream;
    for (int i = 0; i < 200; ++i) stream += frame(50 + i % 9, wireOf(i) + wireOf(i));
    m_peers[0].send(stream);
    m_window.awaitMessages(91);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 91u);
    consume(90);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 91u);
    consume();
    EXPECT_EQ(m_window.awaitMessages(182).size(), 182u);
    ::Sleep(250);
    EXPECT_EQ(m_window.count(), 182u);
    consume(91);
    EXPECT_EQ(m_window.awaitMessages(200).size(), 200u);
    for (size_t i = 0; i < 200; ++i)
        EXPECT_EQ(m_window.messages()[i].payload().substr(0, 4), wireOf(static_cast<int>(i)));
}

// The same object may have another window by now: the first may have been destroyed and created
// again, and the messages with it.
TEST_F(ListenerBackPressure, AWindowThatIsReplacedTakesItsMessagesWithIt) {
    m_setting.set(10);
    MainWindow next;
    for (MainWindow* window : {&m_window, &next}) {
        post(12);
        ASSERT_EQ(m_listener.pauses(), kAll);
        m_listener.setAppWnd(window->wnd());
        EXPECT_EQ(m_listener.getPostMsgCount(), 0);
        EXPECT_EQ(m_listener.pauses(), kNone);
    }
    m_peers[0].send(frame(50, "for the next"));
    EXPECT_EQ(next.awaitMessages(1).at(0).payload(), "for the next");
    m_listener.setAppWnd(nullptr);
}

TEST_F(ListenerBackPressure, WhatAReplacedWindowStillConsumesCountsNoLowerThanZero) {
    post(3);
    m_listener.setAppWnd(nullptr);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    consume(3);
    EXPECT_EQ(m_listener.getPostMsgCount(), 0);
    m_listener.setAppWnd(m_window.wnd());
    post();
    EXPECT_EQ(m_listener.getPostMsgCount(), 1);
}

// Each message pauses the workers until the window has consumed it; a worker that notices only at
// the end of a round of 100 ms takes 10 s for a hundred.
class ListenerRelease : public ListenerTest {
  protected:
    LimitSetting m_setting{1};
};

TEST_F(ListenerRelease, IsHeardAtOnce) {
    auto peer = connect();
    std::string stream;
    for (int i = 0; i < 100; ++i) stream += frame(50, wireOf(i));
    const auto start = ::GetTickCount64();
    peer.send(stream);
    EXPECT_EQ(m_window.awaitMessages(100).size(), 100u);
    EXPECT_LT(::GetTickCount64() - start, 5000u);
}

// Sends one frame over and over, as long as the transport takes bytes at once.
class EagerSender {
  public:
    EagerSender(SOCKET socket, std::string frame) : m_socket(socket), m_frame(std::move(frame)) {}

    // The bytes sent when nothing more has been taken for half a second, or at least `most`.
    size_t sendUntilHeldBack(size_t most) {
        setNonBlocking(1);
        while (m_sent < most && isTaking())
            for (int count; m_sent < most && (count = sendRest()) > 0;)
                m_sent += static_cast<size_t>(count);
        setNonBlocking(0);
        return m_sent;
    }
    // The frames sent once the one begun is whole.
    size_t finishFrame() {
        if (m_sent % m_frame.size() != 0) m_sent += static_cast<size_t>(sendRest());
        EXPECT_EQ(m_sent % m_frame.size(), 0u);
        return m_sent / m_frame.size();
    }

  private:
    void setNonBlocking(u_long on) { ::ioctlsocket(m_socket, static_cast<long>(FIONBIO), &on); }
    int sendRest() {
        const size_t begun = m_sent % m_frame.size();
        return ::send(m_socket, m_frame.data() + begun, static_cast<int>(m_frame.size() - begun),
                      0);
    }
    bool isTaking() const {
        fd_set set{};
        set.fd_count = 1;
        set.fd_array[0] = m_socket;
        timeval timeOut{0, 500000};
        return ::select(0, nullptr, &set, nullptr, &timeOut) == 1;
    }

    SOCKET m_socket;
    std::string m_frame;
    size_t m_sent = 0;
};

TEST_F(ListenerBackPressure, ASenderIsHeldBackByTheTransportAndLosesNothing) {
    constexpr size_t kMost = 64 * 1024 * 1024;
    const std::string body(65528, 'b');
    m_listener.pause(true);
    EagerSender sender(m_peers[0].socket(), frame(54, body));
    EXPECT_LT(sender.sendUntilHeldBack(kMost), kMost);
    EXPECT_EQ(m_window.count(), 0u);
    m_listener.pause(false);
    const size_t frames = sender.finishFrame();
    EXPECT_GT(frames, 0u);
    const auto all = m_window.awaitMessages(frames);
    ASSERT_EQ(all.size(), frames);
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

TEST(ListenerBackPressureOfOthers, LeavesWorkersOfOtherKindsAlone) {
    const peers::WinsockSession winsock;
    PlainListener listener;
    ASSERT_TRUE(listener.start());
    auto peer = listener.connection();
    ASSERT_TRUE(listener.awaitWorkers(1));
    listener.pause(true);
    peer.close();
    EXPECT_TRUE(listener.awaitWorkers(0));
}

}  // namespace
