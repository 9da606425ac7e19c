// What a client held is let go, however the client leaves.
#include "tests/apps/CentralTest.h"

namespace {

class CentralLeaving : public CentralTest {
  protected:
    CentralLeaving() : CentralTest(settings()) {}

    static CentralSettings settings() {
        CentralSettings settings = withPorts(refusingPorts());
        settings.framePatience = std::chrono::milliseconds(500);
        return settings;
    }

    void SetUp() override {
        CentralTest::SetUp();
        connect(client);
        join(leaver, "Leaver");
        EXPECT_TRUE(leaver.lock("part", 0x18));
        EXPECT_EQ(0, leaver.openConnection("A"));
        EXPECT_EQ(0, leaver.openConnection("A"));
        EXPECT_EQ(1u, userNames(client).size());
    }

    // Closes as the client itself does. What is not read by then makes the system send a reset.
    void closeWithAnAnswerUnread() {
        send(leaver, goldenWire("request-isAlive"));
        char first = 0;
        ASSERT_EQ(1, ::recv(leaverSocket(), &first, 1, MSG_PEEK));
        NySeClientAppAccess::closeConnection(leaver);
    }

    SOCKET leaverSocket() const { return NySeClientAppAccess::socket(leaver); }

    void expectAllLetGo() {
        EXPECT_TRUE(eventually([this] { return userNames(client).empty(); }));
        expectNothingHeld(client);
    }

    NySeClientApp leaver;
};

TEST_F(CentralLeaving, ByGoodBye) {
    send(leaver, goldenWire("request-disconnect"));  // and the connection left open
    expectAllLetGo();
}

TEST_F(CentralLeaving, ByClosing) {
    ::shutdown(leaverSocket(), SD_BOTH);
    expectAllLetGo();
}

TEST_F(CentralLeaving, ByResetting) {
    closeWithAnAnswerUnread();
    expectAllLetGo();
}

TEST_F(CentralLeaving, BySilenceInTheMiddleOfARequest) {
    send(leaver, wireOf<LONG>(11) + wireOf<LONG>(100) + "half");
    expectAllLetGo();
}

TEST_F(CentralLeaving, ByARequestThatComesTooSlowly) {
    send(leaver, wireOf<LONG>(11) + wireOf<LONG>(100));
    for (int i = 0; i < 6; ++i) {
        ::Sleep(200);  // shorter than the patience
        const char byte = 'x';
        ::send(leaverSocket(), &byte, 1, 0);
    }
    EXPECT_TRUE(userNames(client).empty());
    expectAllLetGo();
}

TEST_F(CentralLeaving, ByARequestThatCannotBeBelieved) {
    ::testing::internal::CaptureStderr();
    send(leaver, wireOf<LONG>(11) + wireOf<LONG>(-5));
    expectAllLetGo();
    EXPECT_NE("", ::testing::internal::GetCapturedStderr());
}

TEST_F(CentralLeaving, ASilentClientIsKept) {
    ::Sleep(800);  // longer than a request may take
    EXPECT_EQ(1u, userNames(client).size());
    EXPECT_TRUE(leaver.isAlive());
}

}  // namespace
