// The loops that time a codec.
#pragma once

#include "bench/Codecs.h"

namespace bench {

inline void count(benchmark::State& state, size_t bytes, size_t records) {
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["records"] = static_cast<double>(records);
}

inline bool hasFailed = false;

// The check of a benchmark failed: reports no time, and the program ends with status 1.
inline void fail(benchmark::State& state, const char* what) {
    hasFailed = true;
    state.SkipWithError(what);
}

template <class Codec, class Value>
void timeEncoding(benchmark::State& state, Codec& codec, const Value& value, size_t records) {
    size_t bytes = 0;
    for (auto _ : state) {
        const View view = codec.encode(value);
        benchmark::DoNotOptimize(view.data);
        benchmark::ClobberMemory();
        bytes = view.size;
    }
    count(state, bytes, records);
}

// The destruction of what was decoded is part of the time.
template <class Codec>
void timeDecoding(benchmark::State& state, Codec& codec, View encoded, size_t records) {
    const std::vector<unsigned char> bytes(encoded.data, encoded.data + encoded.size);
    View view{bytes.data(), bytes.size()};
    if (!codec.restores(view)) return fail(state, "wrong value");
    for (auto _ : state) {
        benchmark::DoNotOptimize(view.data);
        benchmark::ClobberMemory();
        const auto value = codec.read(view);
        benchmark::DoNotOptimize(&value);
        benchmark::ClobberMemory();
    }
    count(state, bytes.size(), records);
}

// As many bytes as the floor writes.
inline void timeCopy(benchmark::State& state, size_t bytes, size_t records) {
    const std::vector<unsigned char> source(bytes, 'x');
    std::vector<unsigned char> target(bytes);
    size_t size = bytes;
    for (auto _ : state) {
        benchmark::DoNotOptimize(size);
        std::memcpy(target.data(), source.data(), size);
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    count(state, bytes, records);
}

// The C library raises its thresholds for mapping and returning memory when a large block is freed.
// Done once in advance, so that every benchmark runs as in a program that has been running for
// long.
inline void primeHeap() {
    std::vector<char> block(16 << 20);
    benchmark::DoNotOptimize(block.data());
}

// Returns the program's status: 1 if something failed.
inline int runBenchmarks(int argc, char** argv) {
    primeHeap();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return hasFailed ? 1 : 0;
}

}  // namespace bench
