// nymonitor: a window on a central server.
#include <afxwin.h>

#include <cstdio>

#include "apps/common/CommandLine.h"
#include "apps/common/RunProgram.h"
#include "apps/common/Utf8.h"
#include "apps/monitor/Monitor.h"

namespace apps::monitor {
namespace {

constexpr int kWrongUsage = 2;

// A program with windows often has no standard output; then shows a message box.
void say(const std::string& text) {
    if (::GetFileType(::GetStdHandle(STD_OUTPUT_HANDLE)) == FILE_TYPE_UNKNOWN) {
        AfxMessageBox(fromUtf8(text));
        return;
    }
    std::printf("%s", text.c_str());
    std::fflush(stdout);
}

// There is nothing to save, and a thread may still wait for the server.
void endAtOnce() {
    ::TerminateProcess(::GetCurrentProcess(), 0);
}

int run(int count, const char* const* words) {
    Account account;
    CLI::App app("Shows the users, connections and locks of a central server, and what changes.",
                 "nymonitor");
    addServerOption(app, account);
    addUserOption(app, account);
    app.footer("Example: nymonitor --server 127.0.0.1:40123 --user Anna");

    try {
        parseCommandLine(app, count, words);
    } catch (const CLI::CallForHelp&) {
        say(app.help());
        return 0;
    } catch (const CLI::ParseError& error) {
        say(std::string("nymonitor: ") + error.what() + "\n");
        return kWrongUsage;
    }
    return runMonitor(account, &endAtOnce) ? 0 : 1;
}

}  // namespace
}  // namespace apps::monitor

int main(int count, char** words) {
    const auto complain = [](const char* reason) {
        apps::monitor::say(std::string("nymonitor: ") + reason + "\n");
    };
    return apps::runProgram([&] { return apps::monitor::run(count, words); }, complain, 1);
}
