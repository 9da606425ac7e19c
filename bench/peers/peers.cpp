// The times of other libraries with the values of bench/codec.cpp, which has the floor. One source
// for each library that is installed.
//
//   W1/encode/*  W1/decode/*   a table of 10,000 locks
//   W2/encode/*  W2/decode/*   a table of 1,000 users
//   W3/encode/*  W3/decode/*   one request for a lock
//
// Characters are of 2 bytes. A library that does not restore the values is not timed. Encoders
// reuse their memory; decoding makes a new value and includes its destruction.
#include "bench/Measure.h"

int main(int argc, char** argv) {
    return bench::runBenchmarks(argc, argv);
}
