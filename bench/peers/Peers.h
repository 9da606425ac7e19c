// What the peers have in common: how one is added, checked and timed. A peer is a class with two
// operations for each of the values, which are Table<Lock>, Table<User> and Request:
//   View encode(const Value&)     one block of bytes, valid until the next call
//   void read(View, Value&)       fills a fresh value; throws what its library throws
#pragma once

#include <string>

#include "bench/Measure.h"

namespace bench {

// Enough for what any of them writes.
inline constexpr size_t kPeerBytes = 4U << 20;

// A peer in the shape that the loops of Measure.h time, for one kind of value.
template <class Peer, class Value>
class PeerCodec {
  public:
    explicit PeerCodec(const Value& value) : m_expected(floorBytes(value)) {}

    View encode(const Value& value) { return m_peer.encode(value); }
    Value read(View view) {
        Value value;
        m_peer.read(view, value);
        return value;
    }
    // The value that is read must be equal to the original, compared as encoded by the floor.
    bool restores(View view) { return floorBytes(read(view)) == m_expected; }

  private:
    static std::vector<unsigned char> floorBytes(const Value& value) {
        FloorCodec<Value> floor(kFloorBytes);
        const View view = floor.encode(value);
        return {view.data, view.data + view.size};
    }

    Peer m_peer;
    std::vector<unsigned char> m_expected;
};

template <class Peer, class Value>
void addPeerFor(const std::string& workload, const std::string& row, Value (*make)(),
                size_t records) {
    using Codec = PeerCodec<Peer, Value>;
    benchmark::RegisterBenchmark((workload + "/encode/" + row).c_str(), [=](auto& state) {
        const Value value = make();
        Codec codec(value);
        for (int time = 0; time < 2; ++time) {  // twice, since memory is reused
            if (!codec.restores(codec.encode(value))) return fail(state, "wrong value");
        }
        timeEncoding(state, codec, value, records);
    });
    benchmark::RegisterBenchmark((workload + "/decode/" + row).c_str(), [=](auto& state) {
        auto value = std::make_unique<Value>(make());
        Codec codec(*value);
        const View encoded = codec.encode(*value);
        value.reset();
        timeDecoding(state, codec, encoded, records);
    });
}

// Adds a peer's six benchmarks; for a variable of its source, so that it is done before main. The
// value is always true.
template <class Peer>
bool addPeer(const std::string& row) {
    addPeerFor<Peer, Table<Lock>>(
        "W1", row, [] { return plainLocks(kLocks); }, kLocks);
    addPeerFor<Peer, Table<User>>(
        "W2", row, [] { return plainUsers(kUsers); }, kUsers);
    addPeerFor<Peer, Request>(
        "W3", row, [] { return plainRequest(); }, 1);
    return true;
}

}  // namespace bench
