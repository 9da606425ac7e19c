// Which signals a held command receives, and what it may be.
#include "apps/nyctl/HeldCommand.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/support/TempFile.h"

using apps::nyctl::HeldCommand;

namespace {

int statusOf(HeldCommand& command) {
    for (int i = 0; i < 600; ++i)
        if (const auto status = command.wait(100)) return *status;
    return -1;
}

TEST(HeldCommand, ReceivesTheSignalsOfProcesses) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2}) {
        const auto command = HeldCommand::start({"sleep", "100"});
        ::kill(::getpid(), signal);
        EXPECT_EQ(128 + signal, statusOf(*command));
    }
}

// As after a child that something else has waited for.
TEST(HeldCommand, FailsWhenItsStatusIsUnknown) {
    const auto command = HeldCommand::start({"true"});
    ::waitpid(-1, nullptr, 0);
    EXPECT_EQ(1, statusOf(*command));
}

TEST(HeldCommand, MayBeAScriptWithoutAnInterpreter) {
    const TempFolder folder;
    const std::string script = std::filesystem::path(folder.path("script")).string();
    std::ofstream(script) << "exit $(($# + $1))\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    const auto byPath = HeldCommand::start({script, "7"});
    EXPECT_EQ(8, statusOf(*byPath));
}

TEST(HeldCommand, MayBeAScriptOfThePath) {
    const TempFolder folder;
    const std::string script = std::filesystem::path(folder.path("ny-test-script")).string();
    std::ofstream(script) << "exit 9\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    const std::string earlier = std::getenv("PATH");
    ::setenv("PATH", (std::filesystem::path(script).parent_path().string() + ":" + earlier).c_str(),
             1);
    {
        const auto byName = HeldCommand::start({"ny-test-script"});
        EXPECT_EQ(9, statusOf(*byName));
    }
    ::setenv("PATH", earlier.c_str(), 1);
}

}  // namespace
