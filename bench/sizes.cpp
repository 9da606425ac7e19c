// How the cost of a record depends on the number of records: locks with 3 holders.
//
//   encode/library/N  decode/library/N  encode/floor/N  decode/floor/N
//   encode/touch/N    reads each piece of memory that encode/library reads, and writes nothing
//   N = 100, 1,000, ... 1,000,000 records
//
// Time divided by N is the cost of a record. Records that do not fit into the processor's caches
// cost more on the floor too.
#include "bench/Measure.h"

namespace {

using Locks = bench::Table<bench::Lock>;
using FloorLocks = bench::FloorCodec<Locks>;
using LibraryLocks = bench::LibraryCodec<NySeLockArray>;

constexpr size_t kFloorBytesPerLock = 80;

size_t recordsOf(const benchmark::State& state) {
    return static_cast<size_t>(state.range(0));
}

size_t floorCapacity(const benchmark::State& state) {
    return (recordsOf(state) + 1) * kFloorBytesPerLock;
}

void encodeFloor(benchmark::State& state) {
    FloorLocks codec(floorCapacity(state));
    bench::timeEncoding(state, codec, bench::plainLocks(recordsOf(state)), recordsOf(state));
}

void decodeFloor(benchmark::State& state) {
    FloorLocks codec(floorCapacity(state));
    const bench::View encoded = codec.encode(bench::plainLocks(recordsOf(state)));
    bench::timeDecoding(state, codec, encoded, recordsOf(state));
}

void encodeLibrary(benchmark::State& state) {
    NySeLockArray table;
    bench::fill(table, recordsOf(state));
    LibraryLocks codec;
    bench::timeEncoding(state, codec, table, recordsOf(state));
}

// A sum that depends on a lock's name and on each of its holders.
uint32_t touched(const NySeLock& lock) {
    uint32_t sum = lock.getStrLockName()[static_cast<int>(bench::kNameLength) - 1];
    const NySeSessionLockPtrArray& holders = lock.getHolders();
    for (INT_PTR i = 0; i < holders.GetSize(); ++i) sum += holders[i]->getLockState();
    return sum;
}

void touchLibrary(benchmark::State& state) {
    NySeLockArray table;
    bench::fill(table, recordsOf(state));
    for (auto _ : state) {
        uint32_t sum = 0;
        for (INT_PTR i = 0; i < table.GetSize(); ++i) sum += touched(*table[i]);
        benchmark::DoNotOptimize(sum);
    }
    bench::count(state, 0, recordsOf(state));
}

void decodeLibrary(benchmark::State& state) {
    LibraryLocks codec;
    bench::View encoded;
    {
        NySeLockArray table;
        bench::fill(table, recordsOf(state));
        encoded = codec.encode(table);
    }
    bench::timeDecoding(state, codec, encoded, recordsOf(state));
}

void addSizes(const char* name, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, run)->RangeMultiplier(10)->Range(100, 1'000'000);
}

}  // namespace

int main(int argc, char** argv) {
    addSizes("encode/library", encodeLibrary);
    addSizes("encode/touch", touchLibrary);
    addSizes("decode/library", decodeLibrary);
    addSizes("encode/floor", encodeFloor);
    addSizes("decode/floor", decodeFloor);
    return bench::runBenchmarks(argc, argv);
}
