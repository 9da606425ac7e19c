// nymonitor as a process of its own.
#include "tests/monitor/MonitorTest.h"

namespace {

class MonitorProgram : public MonitorTest {
  protected:
    void run(const std::wstring& arguments) {
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        m_output = UniqueKernelHandle(::CreateFileW(
            m_folder.path(L"output").c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
            &inheritable, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        program = std::make_unique<ChildProcess>(L"nymonitor.exe", arguments, nullptr,
                                                 m_output.get(), m_output.get());
    }
    DWORD status() const {
        EXPECT_TRUE(program->hasEnded(kLong));
        return program->exitCode();
    }
    std::string output() const { return m_folder.content(L"output"); }

    std::unique_ptr<ChildProcess> program;

  private:
    TempFolder m_folder;
    UniqueKernelHandle m_output;
};

TEST_F(MonitorProgram, RunsUntilItsWindowIsClosed) {
    startServer();
    OtherUser anna(server->port(), "anna");
    run(L"--user dora --server 127.0.0.1:" + std::to_wstring(server->port()));
    EXPECT_TRUE(soon([&] {
        window = ::FindWindowW(MonitorWnd::kClassName, nullptr);
        return window != nullptr && rows(IDC_USERS) == 2;
    }));
    EXPECT_EQ("nymonitor - 127.0.0.1:" + std::to_string(server->port()), textOf(window));
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(0U, status());
    EXPECT_TRUE(soon([&] {
        NySeUserPtrArray users;
        anna.client.getAllUser(users);
        return users.GetSize() == 1;
    }));
}

TEST_F(MonitorProgram, EndsAlsoWhileTheServerDoesNotAnswer) {
    const peers::ResettingPort silent;
    run(L"--server 127.0.0.1:" + std::to_wstring(silent.port()));
    EXPECT_TRUE(
        soon([&] { return (window = ::FindWindowW(MonitorWnd::kClassName, nullptr)) != nullptr; }));
    ::PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(0U, status());
}

TEST_F(MonitorProgram, ExplainsItself) {
    run(L"--help");
    EXPECT_EQ(0U, status());
    EXPECT_THAT(output(),
                ::testing::HasSubstr("Example: nymonitor --server 127.0.0.1:40123 --user Anna"));
}

TEST_F(MonitorProgram, RefusesAServerThatIsNone) {
    run(L"--server nowhere");
    EXPECT_EQ(2U, status());
    EXPECT_THAT(output(), ::testing::HasSubstr("nowhere is not HOST:PORT"));
}

}  // namespace
