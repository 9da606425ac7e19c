// The loops that time a codec.
#pragma once

#include "bench/Codecs.h"

namespace bench {

inline void count(benchmark::State& state, size_t bytes, size_t records) {
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["records"] = static_cast<double>(records);
}

inline bool hasFailed = false;

// What was timed is not what was meant to be: there is no time, and the program's status says so.
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
// Done once beforehand, so that every benchmark starts as a program that has run for long.
inline void primeHeap() {
    std::vector<char> block(16 << 20);
    benchmark::DoNotOptimize(block.data());
}

// The program's status: 1 when something failed.
inline int runBenchmarks(int argc, char** argv) {
    primeHeap();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return hasFailed ? 1 : 0;
}

}  // namespace bench
