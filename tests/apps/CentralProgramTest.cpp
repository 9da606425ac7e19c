// What the options of the central server's program do.
#include "tests/apps/CentralProgram.h"
#include "tests/apps/CentralTest.h"
#include "tests/apps/ListenerRow.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

class CentralProgramTest : public CentralTest {
  protected:
    void SetUp() override {}

    // A user whose listener says `answer` to probes.
    void serve(const std::wstring& options, const ProbeAnswer& answer = &aliveAnswer) {
        listeners = std::make_unique<ListenerRow>(1, answer);
        program = std::make_unique<CentralProgram>(L"--ports " + listeners->range() + options);
        ASSERT_EQ(0, client.connect(program->port(), "127.0.0.1", -1));
        NySeUser anna = named("Anna");
        m_start = Clock::now();
        ASSERT_EQ(listeners->firstPort(), client.getPortClient(anna));
    }

    // A user who has no listener, and one more client.
    void serveWithoutListener(NySeClientApp& other) {
        const std::wstring port = std::to_wstring(m_nobody.port());
        program = std::make_unique<CentralProgram>(L"--ports " + port + L'-' + port);
        for (NySeClientApp* one : {&client, &other})
            ASSERT_EQ(0, one->connect(program->port(), "127.0.0.1", -1));
        NySeUser anna = named("Anna");
        ASSERT_GT(client.getPortClient(anna), 0);
    }

    void expectToStop() {
        client.shutDownServer();
        EXPECT_TRUE(program->process().hasEnded(seconds(30)));
        EXPECT_EQ(0u, program->process().exitCode());
        client.disconnect();
    }

    seconds::rep secondsSinceStart() const {
        return std::chrono::duration_cast<seconds>(Clock::now() - m_start).count();
    }

    std::unique_ptr<ListenerRow> listeners;
    std::unique_ptr<CentralProgram> program;

  private:
    const peers::RefusingPort m_nobody;
    Clock::time_point m_start;
};

TEST_F(CentralProgramTest, ProbesAsOftenAsItIsTold) {
    serve(L" --probe-seconds 1");
    EXPECT_TRUE(eventually([this] { return listeners->probes() >= 3; }));
    EXPECT_GE(secondsSinceStart(), 3);
    EXPECT_TRUE(client.isAlive());
}

TEST_F(CentralProgramTest, LetsGoOfAUserWhoseListenerDoesNotAnswerProbes) {
    serve(L" --probe-seconds 1", [] { return wireOf<LONG>(0); });
    EXPECT_TRUE(eventually([this] { return client.IsConnected() == 0; }));
    EXPECT_NE(std::string::npos, program->errors().find("its user is gone")) << program->errors();
}

TEST_F(CentralProgramTest, ProbesEveryTenSecondsUnlessToldOtherwise) {
    serve(L"");
    while (listeners->probes() == 0 && secondsSinceStart() < 40) ::Sleep(20);
    EXPECT_EQ(1, listeners->probes());
    EXPECT_GE(secondsSinceStart(), 9);
}

TEST_F(CentralProgramTest, DoesNotProbeWhenTheIntervalIsNone) {
    serve(L" --probe-seconds 0");
    ::Sleep(12'000);  // longer than the interval that it has unless told otherwise
    EXPECT_EQ(0, listeners->probes());
}

// What is still queued when it is told to stop is among them.
TEST_F(CentralProgramTest, SaysHowManyNotificationsWereDropped) {
    for (const auto& [count, said] :
         {std::pair{1, "\n1 notification dropped\n"}, {3, "\n3 notifications dropped\n"}}) {
        NySeClientApp sender;
        serveWithoutListener(sender);
        NySeMessage saved = message("saved");
        for (int i = 0; i < count; ++i) sender.sendAllUserData(saved);
        EXPECT_TRUE(sender.isAlive());
        expectToStop();
        EXPECT_TRUE(program->output().ends_with(said)) << program->output();
    }
}

TEST_F(CentralProgramTest, SaysNothingAboutNotificationsWhenNoneWasDropped) {
    NySeClientApp sender;
    serveWithoutListener(sender);
    expectToStop();
    EXPECT_TRUE(program->output().ends_with("\nstopping\n")) << program->output();
}

TEST_F(CentralProgramTest, ServesAsManyClientsAsItIsTold) {
    NySeClientApp second, third;
    serve(L" --max-sessions 2");
    EXPECT_EQ(0, second.connect(program->port(), "127.0.0.1", -1));
    EXPECT_TRUE(second.isAlive());
    third.connect(program->port(), "127.0.0.1", -1);
    EXPECT_FALSE(third.isAlive());
}

}  // namespace
