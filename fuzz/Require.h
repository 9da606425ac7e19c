#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the program, which the fuzzer reports as a find, unless `condition` holds.
inline void require(bool condition, const char* expectation) {
    if (condition) return;
    std::fprintf(stderr, "broken: %s\n", expectation);
    std::abort();
}
