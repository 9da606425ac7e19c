// Times of requests and notifications under Wine, compared with the least system calls that they
// need. bench-wire PART... [--seconds S] [--connections N]
//
//   requests        isAlive, lock, and unLock followed by lock; beside send, select and recv of the
//                   same bytes
//   notifications   notifications taken by the listener and posted to a window; beside a loop of
//                   the same calls
//   connections     what N connections held open take in memory and handles: the listener's and
//                   nycentral's
//   central         nycentral's requests a second and their times, with 1, 10 and 100 clients, and
//                   while a listener reads its notifications or never does
//   hold PORT       nothing of its own: the other ends of the listener's connections
//
// S: seconds for each group of rows. The first two parts are meant for one core.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench/wire/Parts.h"
#include "NyServer/base/WindowsPrelude.h"

namespace {

using Part = std::function<void(const bench::WireOptions&)>;

// The first of those that the process may use, for all of its threads.
void useOneCore() {
    DWORD_PTR usable = 0;
    DWORD_PTR all = 0;
    ::GetProcessAffinityMask(::GetCurrentProcess(), &usable, &all);
    const DWORD_PTR first = usable & (~usable + 1);
    if (::SetProcessAffinityMask(::GetCurrentProcess(), first) == 0)
        std::printf("not on one core\n");
}

const std::map<std::string, Part>& parts() {
    static const std::map<std::string, Part> all = {
        {"requests",
         [](const bench::WireOptions& options) {
             useOneCore();
             bench::runRequests(options);
         }},
        {"notifications",
         [](const bench::WireOptions& options) {
             useOneCore();
             bench::runNotifications(options);
         }},
        {"connections", &bench::runConnections},
        {"central", &bench::runCentral},
    };
    return all;
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.size() == 2 && arguments[0] == "hold") {
        bench::holdConnections(std::stoi(arguments[1]));
        return 0;
    }
    bench::WireOptions options;
    std::vector<Part> wanted;
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--seconds")
            options.seconds = std::chrono::duration<double>(std::stod(arguments.at(++i)));
        else if (arguments[i] == "--connections")
            options.connections = std::stoi(arguments.at(++i));
        else
            wanted.push_back(parts().at(arguments[i]));
    }
    for (const Part& part : wanted) part(options);
    return wanted.empty() ? 2 : 0;
}

}  // namespace

int main(int argc, char** argv) try {
    return run(std::vector<std::string>(argv + 1, argv + argc));
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench-wire: %s\n", error.what());
    return 1;
}
