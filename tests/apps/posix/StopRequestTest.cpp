// Which signals request a stop.
#include "apps/common/StopRequest.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <chrono>

using apps::StopRequest;

namespace {

TEST(StopRequest, IsMadeByEachSignalThatEndsAProgram) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const StopRequest stopRequest;
        EXPECT_FALSE(StopRequest::isRequested());
        ::raise(signal);
        EXPECT_TRUE(StopRequest::wait(60'000)) << signal;
        EXPECT_TRUE(StopRequest::isRequested());
    }
}

TEST(StopRequest, IsNotMadeByASignalThatWasIgnored) {
    const auto earlier = ::signal(SIGHUP, SIG_IGN);
    {
        const StopRequest stopRequest;
        ::raise(SIGHUP);
        EXPECT_FALSE(StopRequest::isRequested());
    }
    EXPECT_EQ(SIG_IGN, ::signal(SIGHUP, earlier));
}

TEST(StopRequest, IsAwaitedWhileOtherSignalsArrive) {
    const StopRequest stopRequest;
    const auto earlier = ::signal(SIGALRM, [](int) {});
    const itimerval often{{0, 20'000}, {0, 20'000}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(StopRequest::wait(300));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(300));
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::signal(SIGALRM, earlier);
}

TEST(StopRequest, RestoresWhatSignalsDid) {
    const auto earlier = ::signal(SIGTERM, SIG_DFL);
    { const StopRequest stopRequest; }
    EXPECT_EQ(SIG_DFL, ::signal(SIGTERM, earlier));
}

}  // namespace
