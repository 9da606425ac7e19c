// Times of requests and notifications, compared with the least system calls that they
// need. bench-wire PART... [--seconds S] [--connections N] [--port P]
//
//   requests        isAlive, lock, and unLock followed by lock; beside send, a wait and recv of the
//                   same bytes; the only part on Linux
//   notifications   notifications taken by the listener and posted to a window; beside a loop of
//                   the same calls
//   connections     what N connections held open take in memory and handles: the listener's and
//                   nycentral's
//   hold            nothing of its own: the other ends of those connections, to port P
//   central         nycentral's requests a second and their times, with 1, 10 and 100 clients, and
//                   while a listener reads its notifications or never does
//
// S: seconds for each group of rows. The first two parts are meant for one core.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "bench/wire/Parts.h"

namespace {

int run(const std::vector<std::string>& arguments) {
    bench::WireOptions options;
    std::vector<bench::Part> wanted;
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--seconds")
            options.seconds = std::chrono::duration<double>(std::stod(arguments.at(++i)));
        else if (arguments[i] == "--port")
            options.port = std::stoi(arguments.at(++i));
        else if (arguments[i] == "--connections")
            options.connections = std::stoi(arguments.at(++i));
        else
            wanted.push_back(bench::parts().at(arguments[i]));
    }
    for (const bench::Part& part : wanted) part(options);
    return wanted.empty() ? 2 : 0;
}

}  // namespace

int main(int argc, char** argv) try {
    return run(std::vector<std::string>(argv + 1, argv + argc));
} catch (const std::exception& error) {
    std::fprintf(stderr, "bench-wire: %s\n", error.what());
    return 1;
}
