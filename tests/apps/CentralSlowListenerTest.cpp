// Listeners that fail: each costs its own user the notifications, and nobody else anything.
#include "tests/apps/CentralTest.h"
#include "tests/apps/CollectingListener.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kVeryLong{120'000};

// Makes and starts its servers by itself, since each case has its own listeners and limits.
class CentralSlowListener : public CentralTest {
  protected:
    // Anna, whose listener is at `annasPort`, Bob, whose listener collects, and a client that
    // causes the notifications.
    void serve(unsigned int annasPort, const PushLimits& limits) {
        CentralSettings settings = withPorts({static_cast<LONG>(annasPort), ofBob.port()});
        settings.push = limits;
        central = std::make_unique<CentralServer>(std::move(settings));
        ASSERT_EQ(0, central->start(::htonl(INADDR_LOOPBACK), 0));
        connectTo(*central, annasClient);
        registerAnna();
        connectTo(*central, bobsClient);
        NySeUser bob = named("Bob");
        ASSERT_EQ(ofBob.port(), bobsClient.getPortClient(bob));
        connectTo(*central, client);
    }

    void registerAnna() {
        NySeUser anna = named("Anna");
        ASSERT_GT(annasClient.getPortClient(anna), 0);
    }

    static void connectTo(CentralServer& where, NySeClientApp& who) {
        ASSERT_EQ(0, who.connect(static_cast<int>(where.GetPort()), "127.0.0.1", -1));
    }

    // Sends an object of so many bytes to all, and waits until the server has done it.
    void tellAll(size_t bytes) {
        const std::string object(bytes, 'x');
        send(client, request(74, object));
        ASSERT_TRUE(client.isAlive());
        m_toBob += wireOf<LONG>(58) + wireOf(static_cast<LONG>(bytes)) + object;
    }

    // Without the bytes in the message: they may be millions.
    void expectBobToldAll() {
        const std::string told = ofBob.waitFor(m_toBob.size());
        EXPECT_EQ(m_toBob.size(), told.size());
        EXPECT_TRUE(m_toBob == told);
    }

    bool hasEvent(const std::string& text) {
        return eventually(
            [&] { return central->events().newest(1000).find(text) != std::string::npos; });
    }

    CollectingListener ofBob;
    std::unique_ptr<CentralServer> central;
    NySeClientApp annasClient, bobsClient;

  private:
    std::string m_toBob;
};

PushLimits patience(milliseconds connect, milliseconds send) {
    PushLimits limits;
    limits.connectPatience = connect;
    limits.sendPatience = send;
    return limits;
}

TEST_F(CentralSlowListener, OneThatIsNotThereIsGivenUp) {
    const peers::RefusingPort nobody;
    ::testing::internal::CaptureStderr();
    serve(nobody.port(), patience(milliseconds(4'000), milliseconds(4'000)));
    const auto start = Clock::now();
    for (int i = 0; i < 3; ++i) tellAll(10);
    EXPECT_LT(Clock::now() - start, milliseconds(3'000));
    EXPECT_TRUE(hasEvent("cannot be reached: given up, 4 notifications dropped"));
    tellAll(10);
    EXPECT_EQ(5u, central->pusher().dropped());
    expectBobToldAll();
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, said.find(":" + std::to_string(nobody.port()) + " of session 1"))
        << said;
    EXPECT_EQ(1, std::count(said.begin(), said.end(), '\n')) << said;
}

TEST_F(CentralSlowListener, OneThatDoesNotAnswerIsGivenUp) {
    const peers::UnansweringPort unanswering;
    ::testing::internal::CaptureStderr();
    serve(unanswering.port(), patience(milliseconds(400), milliseconds(400)));
    tellAll(10);
    EXPECT_TRUE(hasEvent("given up"));
    expectBobToldAll();
    EXPECT_NE("", ::testing::internal::GetCapturedStderr());
}

TEST_F(CentralSlowListener, OneThatReadsNothingIsGivenUp) {
    const peers::ResettingPort readingNothing;
    ::testing::internal::CaptureStderr();
    serve(readingNothing.port(), patience(milliseconds(10'000), milliseconds(3'000)));
    for (int i = 0; i < 20; ++i) tellAll(1024 * 1024);
    expectBobToldAll();
    EXPECT_TRUE(hasEvent("does not take its notifications: given up"));
    EXPECT_NE("", ::testing::internal::GetCapturedStderr());
}

// What waited for it would wait until it is given up; a request is not waited for as long as that.
TEST_F(CentralSlowListener, OneThatReadsNothingDelaysNobody) {
    const peers::ResettingPort readingNothing;
    serve(readingNothing.port(), patience(kVeryLong, kVeryLong));
    for (int i = 0; i < 20; ++i) tellAll(1024 * 1024);
    expectBobToldAll();
    EXPECT_EQ(std::string::npos, central->events().newest(1000).find("given up"));
    const auto start = Clock::now();
    central.reset();
    EXPECT_LT(Clock::now() - start, kVeryLong / 2);
}

TEST_F(CentralSlowListener, WhatDoesNotFitIntoItsQueueIsDroppedCountedAndShown) {
    constexpr size_t kObject = 1024 * 1024;
    constexpr size_t kObjects = 20;  // more than sockets hold
    std::atomic<bool> isReading = false;
    std::atomic<size_t> received = 0;
    peers::Peer slow([&](peers::Connection& connection) {
        while (!isReading) ::Sleep(10);
        for (std::string piece; !(piece = connection.receive()).empty();) received += piece.size();
    });
    PushLimits limits = patience(milliseconds(10'000), milliseconds(60'000));
    limits.queuedNotifications = 4;
    ::testing::internal::CaptureStderr();
    serve(slow.port(), limits);
    for (size_t i = 0; i < kObjects; ++i) {
        tellAll(kObject);
        expectBobToldAll();  // whose queue is as short
    }
    const size_t dropped = central->pusher().dropped();
    EXPECT_GT(dropped, 0u);
    isReading = true;
    EXPECT_TRUE(hasEvent("is too slow: "));
    const size_t bytes = (kObjects - dropped) * (8 + kObject);
    EXPECT_TRUE(eventually([&] { return received > bytes; }));
    EXPECT_LT(received, bytes + 1000);  // that Bob joined
    const std::string said = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(1, std::count(said.begin(), said.end(), '\n')) << said;
    central.reset();
}

TEST_F(CentralSlowListener, ANotificationLongerThanTheQueueIsDropped) {
    PushLimits limits;
    limits.queuedBytes = 1000;
    const peers::RefusingPort nobody;
    serve(nobody.port(), limits);
    send(client, request(74, std::string(1000, 'x')));
    ASSERT_TRUE(client.isAlive());
    EXPECT_EQ(2u, central->pusher().dropped());
    tellAll(10);
    expectBobToldAll();
}

TEST_F(CentralSlowListener, ItMayStartAfterItsUserRegistered) {
    const peers::WinsockSession winsock;
    const NySe::UniqueSocket listener = peers::bindToLoopback();
    serve(static_cast<unsigned int>(peers::portOf(listener)), PushLimits());
    tellAll(10);
    ::Sleep(300);
    ASSERT_EQ(0, ::listen(listener.get(), 1));
    const NySe::UniqueSocket link(::accept(listener.get(), nullptr, nullptr));
    LONG number = 0;
    ASSERT_EQ(4, ::recv(link.get(), reinterpret_cast<char*>(&number), 4, 0));
    EXPECT_EQ(notifyUserJoined, number);  // Bob, the first of all
}

TEST_F(CentralSlowListener, OneThatWasGivenUpGetsANewChanceWhenItsUserRegistersAgain) {
    const peers::WinsockSession winsock;
    const NySe::UniqueSocket listener = peers::bindToLoopback();
    ::testing::internal::CaptureStderr();
    serve(static_cast<unsigned int>(peers::portOf(listener)),
          patience(milliseconds(200), milliseconds(200)));
    EXPECT_TRUE(hasEvent("given up"));
    ::testing::internal::GetCapturedStderr();
    ASSERT_EQ(0, ::listen(listener.get(), 1));
    registerAnna();
    tellAll(10);
    const NySe::UniqueSocket link(::accept(listener.get(), nullptr, nullptr));
    LONG number = 0;
    ASSERT_EQ(4, ::recv(link.get(), reinterpret_cast<char*>(&number), 4, 0));
    EXPECT_EQ(notifyDataForAll, number);
}

TEST_F(CentralSlowListener, OneThatClosedIsConnectedAgain) {
    std::atomic<int> connections = 0;
    peers::Peer closing([&](peers::Connection& connection) {
        ++connections;
        connection.receive();
    });
    serve(closing.port(), PushLimits());
    for (int i = 1; i <= 3; ++i) {
        EXPECT_TRUE(eventually([&] { return connections == i; }));
        EXPECT_EQ(i, closing.waitForServed(i));
        tellAll(10);
    }
    central.reset();
}

}  // namespace
