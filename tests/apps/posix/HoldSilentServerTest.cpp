// A server that stops replying while a lock is held, but does not close the connection.
#include "tests/apps/NyctlHold.h"

namespace {

TEST_F(NyctlHold, EndsTheCommandWhenTheServerStopsReplying) {
    m_answers[NySe::actionIsAlive] = [](const std::string&) { return std::string(); };
    m_command = "sleep 100";
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(128 + 15, hold(1, ""));
    EXPECT_LT(port::milliseconds() - begin, 60'000U);
    EXPECT_EQ("nyctl: the connection to the server was lost, and the lock with it\n",
              m_run.complaint());
}

// It ends while the reply to the check of every 5 seconds is due.
TEST_F(NyctlHold, EndsSoonAfterTheCommandAlthoughAReplyIsDue) {
    m_answers[NySe::actionIsAlive] = [](const std::string&) { return std::string(); };
    m_command = "sleep 6";
    const ULONGLONG begin = port::milliseconds();
    EXPECT_EQ(exitYes, hold(1, ""));
    EXPECT_LT(port::milliseconds() - begin, 15'000U);
    EXPECT_EQ("", m_run.complaint());
}

TEST_F(NyctlHold, ChecksWhileTheCommandRuns) {
    std::atomic<int> checks = 0;
    m_answers[NySe::actionIsAlive] = [&](const std::string&) {
        ++checks;
        return wireOf<LONG>(NySe::kAliveAnswer);
    };
    m_command = "sleep 12";
    EXPECT_EQ(exitYes, hold(1, ""));
    EXPECT_GE(checks, 2);
    EXPECT_EQ(1, m_releases);
}

}  // namespace
