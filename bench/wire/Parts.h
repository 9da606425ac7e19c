// The parts of the benchmark. Each prints a table and throws std::runtime_error when what it times
// does not work.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>

namespace bench {

struct WireOptions {
    std::chrono::duration<double> seconds{3};  // for each row, or for each group of rows
    int connections = 500;
    int port = 0;
};

using Part = std::function<void(const WireOptions&)>;

// Those that this system has.
const std::map<std::string, Part>& parts();

void runRequests(const WireOptions& options);

inline void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

}  // namespace bench
