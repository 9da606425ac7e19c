// What listeners lose is counted and told; what they do not lose reaches them.
#include "tests/apps/CollectingListener.h"

#include <gtest/gtest.h>

#include "apps/central/Pusher.h"
#include "tests/support/Gate.h"

namespace {

using std::chrono::milliseconds;

class CentralDrops : public ::testing::Test {
  protected:
    void listen(unsigned int port, LONG session = 1) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        address.sin_port = ::htons(static_cast<unsigned short>(port));
        if (!pusher) pusher = std::make_unique<Pusher>(limits, events);
        pusher->listen(session, address);
    }
    void tell(const std::string& text) {
        pusher->notify({1}, std::make_shared<const std::string>(text));
    }

    bool isTold(const std::string& text) {
        return eventually([&] { return events.newest(100).find(text) != std::string::npos; });
    }

    const peers::WinsockSession winsock;
    const peers::RefusingPort nobody;
    PushLimits limits;
    EventLog events;
    std::unique_ptr<Pusher> pusher;
};

TEST_F(CentralDrops, TheQueueOfASessionThatEndsIsCountedAndTold) {
    listen(nobody.port());
    for (int i = 0; i < 3; ++i) tell("x");
    pusher->forget(1);
    EXPECT_TRUE(isTold("has ended: 3 notifications dropped in all"));
    EXPECT_EQ(3u, pusher->dropped());
}

TEST_F(CentralDrops, TheQueueForAnotherPortIsCountedAndTold) {
    CollectingListener other;
    listen(nobody.port());
    for (int i = 0; i < 3; ++i) tell("x");
    listen(static_cast<unsigned int>(other.port()));
    EXPECT_TRUE(isTold("has ended: 3 notifications dropped in all"));
    tell("y");
    EXPECT_EQ("y", other.waitFor(1));
    EXPECT_EQ(3u, pusher->dropped());
    pusher.reset();
}

TEST_F(CentralDrops, WhatIsDroppedAfterAListenerWasGivenUpIsToldAtItsEnd) {
    limits.connectPatience = milliseconds(50);
    listen(nobody.port());
    tell("x");
    EXPECT_TRUE(isTold("given up, 1 notification dropped"));
    tell("y");
    EXPECT_EQ(2u, pusher->dropped());
    pusher.reset();
    EXPECT_TRUE(isTold("has ended: 2 notifications dropped in all"));
}

TEST_F(CentralDrops, AllListenersShareTheBytesOfANotification) {
    listen(nobody.port());
    listen(nobody.port(), 2);
    const auto bytes = std::make_shared<const std::string>("x");
    pusher->notify({1, 2}, bytes);
    EXPECT_EQ(3, bytes.use_count());
}

TEST_F(CentralDrops, AListenerThatLostNothingEndsWithoutAWord) {
    CollectingListener listener;
    listen(static_cast<unsigned int>(listener.port()));
    tell("x");
    EXPECT_EQ("x", listener.waitFor(1));
    pusher.reset();
    EXPECT_EQ("", events.newest(100));
}

TEST_F(CentralDrops, OneThatPausesButStillTakesBytesIsNotLost) {
    constexpr size_t kBytes = 24 * 1024 * 1024;
    limits.sendPatience = milliseconds(3'000);
    std::atomic<size_t> received = 0;
    peers::Peer pausing([&](peers::Connection& connection) {
        // Pauses for longer than the patience in all, and each time for less.
        for (size_t next = 0; received < kBytes;) {
            if (received >= next) {
                ::Sleep(700);
                next += kBytes / 6;
            }
            const std::string piece = connection.receive();
            if (piece.empty()) return;
            received += piece.size();
        }
    });
    listen(pausing.port());
    tell(std::string(kBytes, 'x'));
    eventually([&] { return received >= kBytes; });
    EXPECT_EQ(kBytes, received);
    EXPECT_EQ(0u, pusher->dropped());
    pusher.reset();
}

TEST_F(CentralDrops, OneThatResetsItsConnectionInTheMiddleGetsTheWholeOnANewOne) {
    constexpr size_t kBytes = 24 * 1024 * 1024;
    std::atomic<int> connections = 0;
    std::atomic<size_t> received = 0;
    peers::Peer resettingOnce([&](peers::Connection& connection) {
        if (++connections == 1) {
            const linger none{1, 0};
            ::setsockopt(connection.socket(), SOL_SOCKET, SO_LINGER,
                         reinterpret_cast<const char*>(&none), sizeof none);
            connection.receive();
            return connection.close();
        }
        for (std::string piece; !(piece = connection.receive()).empty();) received += piece.size();
    });
    listen(resettingOnce.port());
    tell(std::string(kBytes, 'x'));
    eventually([&] { return received >= kBytes; });
    EXPECT_EQ(kBytes, received);
    EXPECT_EQ(2, connections);
    EXPECT_EQ(0u, pusher->dropped());
    pusher.reset();
}

TEST_F(CentralDrops, ManyGoOutInOrderAndALostConnectionCutsNone) {
    constexpr int kNotifications = 1'000;
    constexpr size_t kLength = 24'000;  // more than one to a piece, and more than sockets hold
    std::atomic<int> connections = 0;
    std::mutex lock;
    std::string onTheSecond;
    peers::Peer resettingOnce([&](peers::Connection& connection) {
        if (++connections == 1) {
            ::Sleep(500);  // the server is in the middle of one
            return connection.close();
        }
        for (std::string piece; !(piece = connection.receive()).empty();) {
            const std::lock_guard guard(lock);
            onTheSecond += piece;
        }
    });
    listen(resettingOnce.port());
    const auto textOf = [](int number) {
        std::string text = std::to_string(number) + ' ';
        return text + std::string(kLength - text.size(), 'x');
    };
    for (int i = 0; i < kNotifications; ++i) tell(textOf(i));
    const auto hasAll = [&] {
        const std::lock_guard guard(lock);
        return onTheSecond.ends_with(textOf(kNotifications - 1));
    };
    ASSERT_TRUE(eventually(hasAll));
    pusher->forget(1);
    const int first = std::atoi(onTheSecond.c_str());
    EXPECT_GT(first, 0);
    std::string expected;
    for (int i = first; i < kNotifications; ++i) expected += textOf(i);
    EXPECT_TRUE(expected == onTheSecond);
    EXPECT_EQ(2, connections);
    EXPECT_EQ(0u, pusher->dropped());
    pusher.reset();
}

TEST_F(CentralDrops, WhatAListenerSaysIsDroppedAndItsConnectionKept) {
    std::atomic<int> connections = 0;
    std::atomic<int> pieces = 0;
    peers::Peer answering([&](peers::Connection& connection) {
        ++connections;
        while (!connection.receive().empty()) {
            connection.send("thank you");
            ++pieces;
        }
    });
    listen(answering.port());
    for (int i = 1; i <= 3; ++i) {
        tell("x");
        eventually([&] { return pieces >= i; });
        ::Sleep(50);  // the answer is there
    }
    EXPECT_EQ(3, pieces);
    EXPECT_EQ(1, connections);
    pusher.reset();
}

}  // namespace
