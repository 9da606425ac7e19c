// How long other libraries take for the values of bench/codec.cpp, which has the floor to compare
// them with. A source for each library; of those that are not installed there is none.
//
//   W1/encode/*  W1/decode/*   a table of 10,000 locks
//   W2/encode/*  W2/decode/*   a table of 1,000 users
//   W3/encode/*  W3/decode/*   one request for a lock
//
// Characters are of 2 bytes. Each gives back the values it was given, or is not timed. Encoders
// reuse their memory; decoding makes a fresh value and includes its destruction.
#include "bench/Measure.h"

int main(int argc, char** argv) {
    return bench::runBenchmarks(argc, argv);
}
