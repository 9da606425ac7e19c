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
        ASSERT_EQ(listeners->firstPort(), client.getPortClient(anna));
        m_start = Clock::now();
    }

    seconds::rep secondsSinceStart() const {
        return std::chrono::duration_cast<seconds>(Clock::now() - m_start).count();
    }

    std::unique_ptr<ListenerRow> listeners;
    std::unique_ptr<CentralProgram> program;

  private:
    Clock::time_point m_start;
};

TEST_F(CentralProgramTest, ProbesAsOftenAsItIsTold) {
    serve(L" --probe-seconds 1");
    EXPECT_TRUE(eventually([this] { return listeners->probes() == 3; }));
    EXPECT_GE(secondsSinceStart(), 2);
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
    ::Sleep(3'000);
    EXPECT_EQ(0, listeners->probes());
}

}  // namespace
