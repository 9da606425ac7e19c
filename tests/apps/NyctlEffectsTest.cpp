// What nyctl's commands do on a central server, as another user's listener and the tables show it.
#include "tests/apps/CentralTest.h"
#include "tests/apps/FrameListener.h"
#include "tests/apps/NyctlRun.h"
#include "tests/apps/RecordingNotifier.h"

namespace {

// Made before the server and gone after it.
struct BobsListener {
    FrameListener ofBob;
};

// Bob is registered, listens and has connection 0 open. nyctl is Anna.
class NyctlEffects : protected BobsListener, public CentralTest {
  protected:
    NyctlEffects() : CentralTest(withPorts({ofBob.port(), refusingPorts()[0]})) {}
    explicit NyctlEffects(const CentralSettings& settings) : CentralTest(settings) {}

    void SetUp() override {
        CentralTest::SetUp();
        join(client, "Bob");
        ASSERT_EQ(0, client.openConnection("A"));
        m_options.server = address();
    }

    // On one connection, as in the shell.
    ExitStatus run(const std::string& line) { return m_run(m_session, m_options, line); }

    // The last that Bob was told, once it is of that number.
    RecordingNotifier::Told lastToBob(LONG number) {
        const auto isLast = [&] {
            const auto frames = ofBob.frames();
            return !frames.empty() && frames.back().number == number;
        };
        EXPECT_TRUE(eventually(isLast)) << number;
        const auto frames = ofBob.frames();
        return {frames.back().number, {}, frames.back().body};
    }

    void expectBobGets(LONG number, const CString& text) {
        const RecordingNotifier::Told told = lastToBob(number);
        const auto message = told.object<NySeMessage>();
        ASSERT_NE(nullptr, message);
        EXPECT_EQ(text, message->getStrMessage());
        EXPECT_EQ(archived(*message), told.body);  // and nothing else
    }

    const std::string& printed() const { return m_run.printed(); }
    const std::string& complaint() const { return m_run.complaint(); }

  private:
    Options m_options{"", "Anna", false};
    Session m_session{m_options};
    NyctlRun m_run;
};

TEST_F(NyctlEffects, TextsReachTheOthersInAnyScript) {
    EXPECT_EQ(exitYes, run("send-all '\u00e4\u03c9\U0001F600'"));
    expectBobGets(58, _T("\u00e4\u03c9\U0001F600"));
    EXPECT_EQ(exitYes, run("send-user Bob 'are you there?'"));
    expectBobGets(57, "are you there?");
    EXPECT_EQ(exitYes, run("send-connection 0 7 'model saved'"));
    expectBobGets(56, "model saved");
}

TEST_F(NyctlEffects, TextsReachNoOtherUser) {
    ASSERT_EQ(exitYes, run("register"));
    ASSERT_EQ(exitYes, run("send-user Anna 'a word with myself'"));
    EXPECT_EQ(exitYes, run("send-connection 5 7 'model saved'"));
    ASSERT_EQ(exitYes, run("send-all end"));
    expectBobGets(58, "end");
    for (const ReceivedFrame& frame : ofBob.frames())
        EXPECT_TRUE(frame.number != notifyUserData && frame.number != notifyConnectionData);
}

TEST_F(NyctlEffects, UnlockReleasesTheLock) {
    ASSERT_EQ(exitYes, run("lock part/42"));
    EXPECT_FALSE(client.lock("part/42", 0x01));
    EXPECT_EQ(exitYes, run("unlock part/42"));
    const auto released = lastToBob(notifyLockReleased).object<NySeLock>();
    ASSERT_NE(nullptr, released);
    EXPECT_EQ(CString("part/42"), released->getStrLockName());
    EXPECT_EQ(0, released->getHolders().GetSize());
    EXPECT_TRUE(client.lock("part/42", 0x01));
}

TEST_F(NyctlEffects, CloseClosesTheConnectionOnce) {
    ASSERT_EQ(exitYes, run("open B"));
    ASSERT_EQ(exitYes, run("open B"));
    for (const LONG left : {1, 0}) {
        EXPECT_EQ(exitYes, run("close 1"));
        const auto closed = lastToBob(notifyConnectionClosed).object<NySeConnection>();
        ASSERT_NE(nullptr, closed);
        EXPECT_EQ(CString("B"), closed->getStrConnection());
        EXPECT_TRUE(eventually([&] {
            return lastToBob(notifyConnectionClosed).object<NySeConnection>()->getRefCount() ==
                   left;
        }));
    }
    EXPECT_EQ(exitNo, run("openers 1"));
}

TEST_F(NyctlEffects, VerifyFindsNothingInCoherentTables) {
    ASSERT_EQ(exitYes, run("register"));
    EXPECT_EQ(exitYes, run("verify"));
    EXPECT_EQ(std::string::npos, server.events().newest(100).find("incoherent"));
}

// A port that the server is told twice is the one fault that can be had from outside.
class NyctlVerify : public NyctlEffects {
  protected:
    NyctlVerify() : NyctlEffects(withPorts({refusingPorts()[0], refusingPorts()[0]})) {}
};

TEST_F(NyctlVerify, LogsFaultsAsEvents) {
    ASSERT_EQ(exitYes, run("register"));
    EXPECT_EQ(exitYes, run("verify"));
    const std::string fault = "incoherent: user Bob shares port";
    EXPECT_NE(std::string::npos, complaint().find(fault)) << complaint();
    EXPECT_EQ(exitYes, run("events 10"));
    EXPECT_NE(std::string::npos, printed().find(fault)) << printed();
}

}  // namespace
