// Listeners are asked for signs of life; who gives none is gone, with all that its client held.
#include "NyServer/listener/NyServerApp.h"
#include "tests/apps/CentralTest.h"
#include "tests/apps/CollectingListener.h"
#include "tests/apps/FrameListener.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kInterval{300};
// So long that nobody who answers is late on a busy machine.
constexpr milliseconds kPatience{10'000};
// For those who do not answer. Bob has to within it.
constexpr milliseconds kShortPatience{3'000};
constexpr milliseconds kConnectPatience{2'000};

// Makes and starts its servers by itself, since each case has its own listeners.
class CentralProbe : public CentralTest {
  protected:
    // Anna, whose listener is at `annasPort` and who holds a lock and two opens, Bob, whose
    // listener answers, and a client that causes notifications.
    void serve(LONG annasPort, milliseconds interval = kInterval,
               milliseconds patience = kPatience) {
        CentralSettings settings = withPorts({annasPort, ofBob.port()});
        settings.push.probeInterval = interval;
        settings.push.probePatience = patience;
        settings.push.connectPatience = kConnectPatience;
        settings.framePatience = milliseconds(120'000);  // only the listener ends a client here
        central = std::make_unique<CentralServer>(std::move(settings));
        ASSERT_EQ(0, central->start(::htonl(INADDR_LOOPBACK), 0));
        for (NySeClientApp* one : {&annasClient, &bobsClient, &client})
            ASSERT_EQ(0, one->connect(static_cast<int>(central->GetPort()), "127.0.0.1", -1));
        NySeUser bob = named("Bob");
        NySeUser anna = named("Anna");
        ASSERT_EQ(annasPort, annasClient.getPortClient(anna));
        ASSERT_EQ(ofBob.port(), bobsClient.getPortClient(bob));
        EXPECT_TRUE(annasClient.lock("part", 0x18));
        EXPECT_EQ(0, annasClient.openConnection("A"));
        EXPECT_EQ(0, annasClient.openConnection("A"));
        m_isServing = true;
    }

    // `answer` from the end of serve on, which may take long on a busy machine; the right one until
    // then.
    ProbeAnswer onceServing(ProbeAnswer answer) {
        return [this, answer = std::move(answer)]() -> std::optional<std::string> {
            if (!m_isServing) return aliveAnswer();
            ++m_answers;
            return answer();
        };
    }
    int answersWhileServing() const { return m_answers; }

    bool isTold(const std::string& text) {
        return central->events().newest(1000).find(text) != std::string::npos;
    }

    bool isAnnaThere() { return userNames(client).size() == 2; }

    // As when she leaves by herself.
    void expectAnnaGone(const std::string& reason) {
        EXPECT_TRUE(eventually([this] { return userNames(client).size() == 1; }));
        EXPECT_EQ(std::vector<std::string>{"Bob"}, userNames(client));
        expectNothingHeld(client);
        EXPECT_TRUE(eventually([this] { return annasClient.IsConnected() == 0; }));
        EXPECT_FALSE(annasClient.isAlive());
        EXPECT_TRUE(eventually([&] { return isTold(reason + ": its user is gone"); }));
        const std::vector<LONG> told{notifyLockGranted,      notifyConnectionOpened,
                                     notifyConnectionOpened, notifyLockReleased,
                                     notifyConnectionClosed, notifyConnectionClosed,
                                     notifyUserLeft};
        EXPECT_TRUE(eventually([&] { return ofBob.frames().size() >= told.size(); }));
        EXPECT_EQ(told, numbersOf(ofBob));
        EXPECT_FALSE(central->lostSessions().contains(1));
    }

    static std::vector<LONG> numbersOf(FrameListener& listener) {
        std::vector<LONG> numbers;
        for (const ReceivedFrame& frame : listener.frames()) numbers.push_back(frame.number);
        return numbers;
    }

    void expectAnnaStays(FrameListener& hers, int probes) {
        EXPECT_TRUE(eventually([&] { return hers.probes() >= probes; }));
        EXPECT_TRUE(isAnnaThere());
        EXPECT_TRUE(annasClient.isAlive());
        EXPECT_FALSE(isTold("its user is gone"));
    }

    // What the server says on standard error is looked at as an event.
    CentralProbe() { ::testing::internal::CaptureStderr(); }
    ~CentralProbe() override {
        central.reset();
        ::testing::internal::GetCapturedStderr();
    }

    FrameListener ofBob;
    std::unique_ptr<CentralServer> central;
    NySeClientApp annasClient, bobsClient;

  private:
    std::atomic<bool> m_isServing = false;
    std::atomic<int> m_answers = 0;
};

TEST_F(CentralProbe, IsAnActionOneWithoutABody) {
    EXPECT_EQ(wireOf<LONG>(1) + wireOf<LONG>(0), *makeProbe());
    CollectingListener ofAnna;
    serve(ofAnna.port());
    EXPECT_TRUE(eventually([&] { return ofAnna.received().ends_with(*makeProbe()); }));
    central.reset();
}

TEST_F(CentralProbe, WhoAnswersStays) {
    FrameListener ofAnna;
    serve(ofAnna.port());
    expectAnnaStays(ofAnna, 5);
    EXPECT_TRUE(eventually([this] { return ofBob.probes() >= 4; }));
    EXPECT_EQ(1, ofAnna.connections());
}

TEST_F(CentralProbe, TheListenerOfTheLibraryAnswers) {
    NyServerApp ofAnna;
    ASSERT_EQ(0, ofAnna.Start());
    ofAnna.SetPort(ofAnna.GetBoundPort());
    serve(static_cast<LONG>(ofAnna.GetBoundPort()), kInterval, kShortPatience);
    ::Sleep(5'000);  // longer than the interval and the patience
    EXPECT_EQ(1, ofAnna.GetNumConnections());
    EXPECT_TRUE(isAnnaThere());
    EXPECT_TRUE(annasClient.isAlive());
    central.reset();
}

TEST_F(CentralProbe, AreSentAtTheInterval) {
    FrameListener ofAnna;
    const auto start = Clock::now();
    serve(ofAnna.port(), milliseconds(1'000));
    expectAnnaStays(ofAnna, 3);
    EXPECT_GE(Clock::now() - start, milliseconds(3'000));
}

TEST_F(CentralProbe, WhoDoesNotAnswerIsGone) {
    FrameListener ofAnna(onceServing([] { return ""; }));
    const auto start = Clock::now();
    serve(ofAnna.port(), kInterval, kShortPatience);
    expectAnnaGone("does not answer");
    EXPECT_GE(Clock::now() - start, kInterval + kShortPatience);
    EXPECT_EQ(1, answersWhileServing());
}

TEST_F(CentralProbe, WhoAnswersWronglyIsGone) {
    FrameListener ofAnna(onceServing([] { return wireOf<LONG>(511); }));
    serve(ofAnna.port(), milliseconds(1'000), milliseconds(60'000));
    expectAnnaGone("answers a probe wrongly");
}

TEST_F(CentralProbe, WhoAnswersInPartIsGone) {
    FrameListener ofAnna(onceServing([] { return aliveAnswer().substr(0, 3); }));
    serve(ofAnna.port(), kInterval, kShortPatience);
    expectAnnaGone("does not answer");
}

TEST_F(CentralProbe, AnAnswerMayComeInPieces) {
    std::atomic<int> probes = 0;
    peers::Peer ofAnna([&](peers::Connection& connection) {
        std::string received;
        for (std::string piece; !(piece = connection.receive()).empty();) {
            received += piece;
            if (received.size() < 8 || received.substr(received.size() - 8) != *makeProbe())
                continue;
            ++probes;
            for (const std::string& byte : inSingleBytes(aliveAnswer())) {
                connection.send(byte);
                ::Sleep(60);
            }
        }
    });
    serve(static_cast<LONG>(ofAnna.port()));
    EXPECT_TRUE(eventually([&] { return probes >= 3; }));
    EXPECT_TRUE(isAnnaThere());
}

TEST_F(CentralProbe, WhoClosesBetweenProbesIsAskedOnANewConnection) {
    std::atomic<int> closes = 2;
    FrameListener ofAnna(
        [&] { return closes-- > 0 ? std::nullopt : std::optional(aliveAnswer()); });
    serve(ofAnna.port());
    expectAnnaStays(ofAnna, 5);
    EXPECT_EQ(3, ofAnna.connections());
}

TEST_F(CentralProbe, WhoClosesAtEveryProbeIsGone) {
    FrameListener ofAnna(onceServing([] { return std::nullopt; }));
    serve(ofAnna.port(), kInterval, kShortPatience);
    expectAnnaGone("does not answer");
}

TEST_F(CentralProbe, WhoClosesAndListensNoMoreIsGone) {
    auto ofAnna = std::make_unique<FrameListener>();
    const LONG port = ofAnna->port();
    serve(port);
    EXPECT_TRUE(eventually([&] { return ofAnna->probes() >= 1; }));
    ofAnna.reset();
    expectAnnaGone("can no longer be reached");
}

TEST_F(CentralProbe, WhoNeverListenedStays) {
    const peers::RefusingPort nobody;
    serve(static_cast<LONG>(nobody.port()));
    ::Sleep(6'000);  // longer than it is tried to connect for a notification and then for a probe
    EXPECT_TRUE(isAnnaThere());
    EXPECT_TRUE(annasClient.isAlive());
}

TEST_F(CentralProbe, AreNotSentWhenTheIntervalIsNone) {
    FrameListener ofAnna;
    serve(ofAnna.port(), milliseconds(0));
    ::Sleep(500);
    EXPECT_EQ(0, ofAnna.probes());
    EXPECT_EQ(1u, ofAnna.frames().size());  // that Bob joined
}

TEST_F(CentralProbe, HoldUpNeitherNotificationsNorRequestsWhileTheyWait) {
    FrameListener ofAnna(onceServing([] { return ""; }));
    serve(ofAnna.port(), kInterval, milliseconds(60'000));
    ASSERT_TRUE(eventually([this] { return answersWhileServing() == 1; }));
    const size_t before = ofAnna.frames().size();
    const auto start = Clock::now();
    NySeMessage saved = message("saved");
    for (int i = 0; i < 20; ++i) client.sendAllUserData(saved);
    EXPECT_TRUE(client.isAlive());
    EXPECT_TRUE(annasClient.isAlive());
    EXPECT_TRUE(eventually([&] { return ofAnna.frames().size() == before + 20; }));
    EXPECT_LT(Clock::now() - start, milliseconds(20'000));
    EXPECT_TRUE(isAnnaThere());
}

TEST_F(CentralProbe, AnAnswerCountsAlsoWhenNotificationsComeMeanwhile) {
    FrameListener ofAnna;
    serve(ofAnna.port());
    NySeMessage saved = message("saved");
    for (int i = 0; i < 300 && ofAnna.probes() < 5; ++i) {
        client.sendAllUserData(saved);
        ::Sleep(5);
    }
    expectAnnaStays(ofAnna, 5);
    EXPECT_EQ(1, ofAnna.connections());
}

TEST_F(CentralProbe, WhatAListenerSaysUnaskedIsNoAnswer) {
    peers::Peer ofAnna([&](peers::Connection& connection) {
        connection.send(aliveAnswer() + "and more");
        connection.receiveAll();
    });
    serve(static_cast<LONG>(ofAnna.port()), milliseconds(2'000), kShortPatience);
    expectAnnaGone("does not answer");
}

TEST_F(CentralProbe, WhatAListenerSaysAheadOfAProbeIsNotTakenForTheAnswer) {
    std::atomic<int> probes = 0;
    peers::Peer ofAnna([&](peers::Connection& connection) {
        std::string received;
        for (std::string piece; !(piece = connection.receive()).empty();) {
            received += piece;
            if (!received.ends_with(*makeProbe())) continue;
            ++probes;
            connection.send(aliveAnswer());
            ::Sleep(200);
            connection.send("thank you");  // long before the next one
        }
    });
    serve(static_cast<LONG>(ofAnna.port()), milliseconds(2'000));
    EXPECT_TRUE(eventually([&] { return probes >= 3; }));
    EXPECT_TRUE(isAnnaThere());
    central.reset();
}

TEST_F(CentralProbe, WhoMovedToAnotherPortIsAskedThere) {
    FrameListener ofAnna;
    FrameListener spare;
    CentralSettings settings = withPorts({ofAnna.port(), spare.port()});
    settings.push.probeInterval = kInterval;
    central = std::make_unique<CentralServer>(std::move(settings));
    ASSERT_EQ(0, central->start(::htonl(INADDR_LOOPBACK), 0));
    ASSERT_EQ(0, client.connect(static_cast<int>(central->GetPort()), "127.0.0.1", -1));
    NySeUser anna = named("Anna");
    client.getPortClient(anna);
    EXPECT_TRUE(eventually([&] { return ofAnna.probes() >= 1; }));
    ASSERT_EQ(spare.port(), client.getAnotherPort());
    EXPECT_TRUE(eventually([&] { return spare.probes() >= 3; }));
    EXPECT_TRUE(client.isAlive());
}

TEST_F(CentralProbe, AClientInTheMiddleOfARequestEndsWithItsListener) {
    FrameListener ofAnna(onceServing([] { return ""; }));
    serve(ofAnna.port(), kInterval, kShortPatience);
    send(annasClient, wireOf<LONG>(11) + wireOf<LONG>(100) + "half");
    EXPECT_TRUE(eventually([this] { return !isAnnaThere(); }));
    EXPECT_TRUE(isTold("does not answer"));
}

}  // namespace
