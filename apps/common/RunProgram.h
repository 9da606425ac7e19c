#pragma once

#include <afx.h>

#include <exception>
#include <new>

namespace apps {

// Returns what `run` returns. If it throws, calls `complain` with the reason and returns `failure`.
//
// When a program runs out of memory, it does not try to continue: the exception ends the session
// with the server. A command line program ends with it. The monitor's worker, which has an
// exception boundary of its own, closes the connection and connects again later.
template <class Run, class Complain>
int runProgram(Run run, Complain complain, int failure) {
    constexpr const char* kOutOfMemory = "out of memory";
    try {
        return run();
    } catch (const std::bad_alloc&) {
        complain(kOutOfMemory);
    } catch (CMemoryException* error) {
        error->Delete();
        complain(kOutOfMemory);
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return failure;
}

}  // namespace apps
