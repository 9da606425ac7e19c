// What a held command receives, and when it ends. The command is this program: the disabled tests
// are what it runs then.
#include "apps/nyctl/HeldCommand.h"

#include <afxwin.h>
#include <gtest/gtest.h>
#include <shellapi.h>

#include "apps/common/Utf8.h"
#include "NyServer/base/detail/WindowsHandles.h"
#include "tests/support/Gate.h"

using apps::nyctl::HeldCommand;

namespace {

const std::vector<std::string> kWords = {"plain",      "",         "two words", "a\"b",
                                         "\"",         "back\\sl", "c:\\x\\",   "d e\\",
                                         "f g\\\\\"h", "\\\\\"",   "tab\there", "p\xC3\xA4rt"};

std::vector<std::string> ownWords() {
    int count = 0;
    LPWSTR* const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) texts.push_back(apps::toUtf8(CString(words[i])));
    ::LocalFree(words);
    return texts;
}

std::unique_ptr<HeldCommand> startSelf(const std::string& test, std::vector<std::string> words) {
    words.insert(words.begin(), {ownWords()[0], "--gtest_also_run_disabled_tests",
                                 "--gtest_filter=HeldCommand.DISABLED_" + test, "--"});
    return HeldCommand::start(words);
}

std::vector<std::string> wordsAfterDashes() {
    const std::vector<std::string> words = ownWords();
    return {std::find(words.begin(), words.end(), "--") + 1, words.end()};
}

TEST(HeldCommand, DISABLED_ComparesItsWords) {
    EXPECT_EQ(kWords, wordsAfterDashes());
}

TEST(HeldCommand, ReceivesItsWordsAsTheyAre) {
    EXPECT_EQ(0, startSelf("ComparesItsWords", kWords)->wait(60'000));
    EXPECT_EQ(1, startSelf("ComparesItsWords", {"others"})->wait(60'000));
}

TEST(HeldCommand, DISABLED_KeepsAMutex) {
    const CString name = apps::fromUtf8(wordsAfterDashes()[0]);
    const NySe::UniqueKernelHandle mutex(::CreateMutexW(nullptr, TRUE, name));
    ::Sleep(120'000);
}

class RunningCommand : public testing::Test {
  protected:
    // Waits until the command has its mutex.
    RunningCommand() {
        EXPECT_TRUE(eventually([this] {
            m_mutex.reset(::OpenMutexW(SYNCHRONIZE, FALSE, apps::fromUtf8(m_name)));
            return static_cast<bool>(m_mutex);
        }));
    }
    // The system passes the mutex on when the command's process ends.
    bool hasEnded() { return ::WaitForSingleObject(m_mutex.get(), 60'000) == WAIT_ABANDONED; }

    const std::string m_name = "ny-held-" + std::to_string(::GetCurrentProcessId());
    std::unique_ptr<HeldCommand> m_command = startSelf("KeepsAMutex", {m_name});
    NySe::UniqueKernelHandle m_mutex;
};

TEST_F(RunningCommand, EndsWithItsObjectAsItDoesWithTheProcess) {
    m_command.reset();
    EXPECT_TRUE(hasEnded());
}

TEST_F(RunningCommand, HasTheStatusOfSigtermWhenItIsTerminated) {
    m_command->terminate();
    EXPECT_EQ(128 + 15, m_command->wait(60'000));
}

}  // namespace
