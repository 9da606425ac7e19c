// How nyctl's hold requests its lock from a server, and when it runs its command.
#include "apps/common/StopRequest.h"
#include "apps/nyctl/TryConnect.h"
#include "tests/apps/NyctlHold.h"

namespace {

TEST_F(NyctlHold, RunsTheCommandAndReleasesTheLock) {
    EXPECT_EQ(exitYes, hold(1, ""));
    EXPECT_TRUE(hasRun());
    EXPECT_EQ(1, m_requests);
    EXPECT_EQ(1, m_releases);
}

TEST_F(NyctlHold, IsRefusedAtOnceWithoutATime) {
    for (const char* options : {"", "--wait 0"}) {
        m_requests = 0;
        EXPECT_EQ(exitNo, hold(2, options));
        EXPECT_EQ(1, m_requests);
    }
    EXPECT_FALSE(hasRun());
    EXPECT_EQ(0, m_releases);
    EXPECT_EQ("nyctl: the lock part/42 is refused\n", m_run.complaint());
}

TEST_F(NyctlHold, ListensOnlyToWait) {
    bool isListening = false;
    m_answers[NySe::actionLock] = [&](const std::string&) {
        isListening = tryConnect("127.0.0.1", m_listening, std::chrono::seconds(5)) ==
                      ConnectOutcome::connected;
        return std::string(1, '\0');
    };
    EXPECT_EQ(exitNo, hold(1, ""));
    EXPECT_FALSE(isListening);
    EXPECT_EQ(exitNo, hold(1, "--wait 0.1"));
    EXPECT_TRUE(isListening);
}

// The retries alone would take a second each.
TEST_F(NyctlHold, RequestsAgainWhenTheReleaseIsReported) {
    m_notification = releaseOf("Part/42");
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(exitYes, hold(16, "--wait 60"));
    EXPECT_LT(port::milliseconds() - begin, 14'000U);
    EXPECT_TRUE(hasRun());
    EXPECT_EQ(16, m_requests);
    EXPECT_EQ(1, m_releases);
}

TEST_F(NyctlHold, IgnoresTheReleaseOfAnotherLock) {
    m_notification = releaseOf("part/43");
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(exitYes, hold(3, "--wait 60"));
    EXPECT_GE(port::milliseconds() - begin, 1'900U);
}

TEST_F(NyctlHold, RequestsAgainEverySecond) {
    EXPECT_EQ(exitYes, hold(2, "--wait 60"));
    EXPECT_EQ(2, m_requests);
}

TEST_F(NyctlHold, IsRefusedWhenTheTimeHasPassed) {
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(exitNo, hold(1000, "--wait 0.3"));
    EXPECT_GE(port::milliseconds() - begin, 280U);
    EXPECT_LT(port::milliseconds() - begin, 15'000U);
    EXPECT_FALSE(hasRun());
}

TEST_F(NyctlHold, RunsNothingAfterAStopRequest) {
    m_answers[NySe::actionLock] = [](const std::string&) {
        StopRequest::request();
        return std::string(1, '\1');
    };
    EXPECT_EQ(exitNo, hold(1, ""));
    EXPECT_EQ(1, m_releases);
    m_answers[NySe::actionLock] = [](const std::string&) {
        StopRequest::request();
        return std::string(1, '\0');
    };
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(exitNo, hold(1, "--wait 30"));
    EXPECT_LT(port::milliseconds() - begin, 25'000U);
    EXPECT_FALSE(hasRun());
}

TEST_F(NyctlHold, EndsWhenTheServerDoesNotReply) {
    m_answers[NySe::actionLock] = [](const std::string&) { return std::nullopt; };
    for (const char* options : {"", "--wait 60"}) {
        EXPECT_EQ(exitNoReply, hold(1, options));
        EXPECT_EQ(0U, m_run.complaint().find("nyctl: no reply from "));
    }
    EXPECT_FALSE(hasRun());
}

}  // namespace
