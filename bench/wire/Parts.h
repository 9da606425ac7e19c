// The parts of the benchmark. Each prints a table and throws std::runtime_error when what it times
// does not work.
#pragma once

#include <chrono>
#include <stdexcept>

namespace bench {

struct WireOptions {
    std::chrono::duration<double> seconds{3};  // for each row, or for each group of rows
    int connections = 500;
};

void runRequests(const WireOptions& options);
void runNotifications(const WireOptions& options);
void runConnections(const WireOptions& options);
void runCentral(const WireOptions& options);

// Opens a connection to a port of 127.0.0.1 for each byte of the input and holds all of them until
// the input ends.
void holdConnections(int port);

inline void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

}  // namespace bench
