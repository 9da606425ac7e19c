// What a user of Wireshark can set.
#include <gtest/gtest.h>

#include "tests/wireshark/Tshark.h"
#include "tests/wireshark/Wire.h"

namespace {

constexpr int kClientPort = 50'000;
constexpr int kUnknownPort = 30'000;

// The packet list of one request to a port that is nobody's.
std::string listOf(const Bytes& request, const std::string& settings) {
    Capture capture;
    capture.add(kClientPort, kUnknownPort, request);
    const tshark::Result result =
        tshark::decode(capture, settings + " -T fields -e _ws.col.Protocol -e _ws.col.Info");
    EXPECT_EQ(0, result.status) << result.complaints;
    return result.output;
}

const Bytes kNarrowUnLock = request(NySe::actionUnLock, {1, 'a'});

TEST(WiresharkSettings, KeepTheHeuristicFromLooking) {
    EXPECT_EQ("NyServer\tinitializeSchema 2015\n", listOf(hello(), ""));
    EXPECT_EQ("TCP", listOf(hello(), "-o nyserver.heuristic:FALSE").substr(0, 3));
}

TEST(WiresharkSettings, NamePortsOfServers) {
    EXPECT_EQ("TCP", listOf(kNarrowUnLock, "").substr(0, 3));
    for (const char* ports : {"30000", "1-30000", "5,29999-30001"}) {
        EXPECT_EQ("NyServer\tunLock \"a\"\n",
                  listOf(kNarrowUnLock, std::string("-o nyserver.ports:") + ports));
    }
    EXPECT_EQ("NyServer\tunLock \"a\"\n", listOf(kNarrowUnLock, "-d tcp.port==30000,nyserver"));
}

TEST(WiresharkSettings, SayHowLongAPayloadMayBe) {
    EXPECT_EQ("NyServer\tinitializeSchema of impossible length; not understood\n",
              listOf(hello(), "-o nyserver.ports:30000 -o nyserver.longest:3"));
}

}  // namespace
