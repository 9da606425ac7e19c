// nymonitor as a process of its own.
#include "tests/monitor/MonitorTest.h"

namespace {

class MonitorProgram : public MonitorTest {
  protected:
    void run(const std::wstring& arguments) {
        m_output = outputFile(m_folder.path("output"));
        program = std::make_unique<ChildProcess>(L"nymonitor.exe", arguments, nullptr,
                                                 m_output.get(), m_output.get());
    }
    bool hasWindow() {
        window = ::FindWindowW(MonitorWnd::kClassName, nullptr);
        return window != nullptr;
    }
    // Ends with the status, and has printed this among other things.
    void expectEnd(DWORD status, const std::string& printed = "") const {
        EXPECT_TRUE(program->hasEnded(kLong));
        EXPECT_EQ(status, program->exitCode());
        EXPECT_THAT(m_folder.content("output"), ::testing::HasSubstr(printed));
    }

    std::unique_ptr<ChildProcess> program;

  private:
    TempFolder m_folder;
    NySe::UniqueKernelHandle m_output;
};

TEST_F(MonitorProgram, RunsUntilItsWindowIsClosed) {
    startServer();
    OtherUser anna(server->port(), "anna");
    run(L"--user dora --server 127.0.0.1:" + std::to_wstring(server->port()));
    EXPECT_TRUE(soon([&] { return hasWindow() && rows(IDC_USERS) == 2; }));
    EXPECT_EQ("nymonitor - 127.0.0.1:" + std::to_string(server->port()), textOf(window));
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    expectEnd(0);
    EXPECT_TRUE(soon([&] {
        NySeUserPtrArray users;
        anna.client.getAllUser(users);
        return users.GetSize() == 1;
    }));
}

TEST_F(MonitorProgram, EndsAlsoWhileTheServerDoesNotReply) {
    const peers::ResettingPort silent;
    run(L"--server 127.0.0.1:" + std::to_wstring(silent.port()));
    EXPECT_TRUE(soon([&] { return hasWindow(); }));
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    expectEnd(0);
}

TEST_F(MonitorProgram, PrintsItsHelp) {
    run(L"--help");
    expectEnd(0, "Example: nymonitor --server 127.0.0.1:40123 --user Anna");
}

TEST_F(MonitorProgram, RefusesAnInvalidServerAddress) {
    run(L"--server nowhere");
    expectEnd(2, "nowhere is not HOST:PORT");
}

}  // namespace
