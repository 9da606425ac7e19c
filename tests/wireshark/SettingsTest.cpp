// What a user of Wireshark can set.
#include <gtest/gtest.h>

#include <sstream>

#include "tests/wireshark/Tshark.h"
#include "tests/wireshark/Wire.h"

namespace {

constexpr int kClientPort = 50'000;

// The packet list of the same first message to three ports that are nobody's.
std::string listOf(const Bytes& bytes, const std::string& settings) {
    Capture capture;
    for (const int port : {30'000, 30'005, 30'010}) capture.add(kClientPort, port, bytes);
    const tshark::Result result = tshark::decode(capture, settings + " -T fields -e _ws.col.Info");
    EXPECT_EQ(0, result.status) << result.complaints;
    return result.output;
}

size_t found(const std::string& list, const std::string& line) {
    size_t count = 0;
    std::istringstream lines(list);
    for (std::string one; std::getline(lines, one);) count += one == line ? 1 : 0;
    return count;
}

// A request that the library would write otherwise, so that it is not recognised.
const Bytes kNarrowUnLock = request(NySe::actionUnLock, {1, 'a'});

TEST(WiresharkSettings, KeepTheHeuristicFromLooking) {
    EXPECT_EQ(3u, found(listOf(hello(), ""), "initializeSchema 2015"));
    EXPECT_EQ(0u, found(listOf(hello(), "-o nyserver.heuristic:FALSE"), "initializeSchema 2015"));
}

TEST(WiresharkSettings, NamePortsOfServers) {
    EXPECT_EQ(2u,
              found(listOf(kNarrowUnLock, "-o nyserver.ports:30000,30004-30006"), "unLock \"a\""));
    EXPECT_EQ(1u, found(listOf(kNarrowUnLock, "-d tcp.port==30010,nyserver"), "unLock \"a\""));
}

TEST(WiresharkSettings, LimitTheLengthOfAPayload) {
    EXPECT_EQ(3u, found(listOf(hello(), "-o nyserver.ports:30000-30010 -o nyserver.longest:3"),
                        "initializeSchema with an invalid length; not decoded"));
}

}  // namespace
