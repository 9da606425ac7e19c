// What the machine's identity is made of, beside what the system's files say.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "NyServer/base/port/Port.h"

namespace {

std::string hexPairs(const std::vector<BYTE>& bytes) {
    std::string text;
    for (const BYTE byte : bytes) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02x:", byte);
        text += pair;
    }
    return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

TEST(Adapters, AreTheSystemsButForTheLoopback) {
    std::vector<std::string> expected;
    for (const auto& device : std::filesystem::directory_iterator("/sys/class/net")) {
        std::ifstream file(device.path() / "address");
        std::string address;
        if (device.path().filename() == "lo" || !std::getline(file, address)) continue;
        expected.push_back(address);
    }
    std::vector<std::string> found;
    for (const port::Adapter& adapter : port::adapters()) {
        found.push_back(hexPairs(adapter.hardwareAddress));
        for (const std::string& address : adapter.addresses) {
            in_addr number{};
            EXPECT_EQ(::inet_pton(AF_INET, address.c_str(), &number), 1) << address;
            EXPECT_NE(ntohl(number.s_addr) >> 24, 127u) << address;
        }
    }
    std::sort(expected.begin(), expected.end());
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
}

TEST(VolumeSerial, IsTheSameEachTime) {
    EXPECT_EQ(port::systemVolumeSerial(), port::systemVolumeSerial());
}

}  // namespace
