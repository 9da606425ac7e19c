// What the machine's identity is made of, beside what the system's files say.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "NyServer/base/port/Port.h"
#include "tests/support/TempFile.h"

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

// The number of the system if its machine-id file had the content; nothing if this user cannot have
// a view of the files of its own. The view is that of a thread.
std::optional<DWORD> serialWith(const std::string& content) {
    const TempFolder folder;
    const WideText path = folder.file("machine-id", content);
    const std::string file(path.begin(), path.end());
    std::optional<DWORD> serial;
    std::thread([&] {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount(file.c_str(), "/etc/machine-id", nullptr, MS_BIND, nullptr) != 0)
            return;
        serial = port::systemSerial();
    }).join();
    return serial;
}

constexpr const char* kSkipped = "a view of the files for one thread needs root and a machine-id";

// Others store the identity: the numbers stay.
TEST(SystemSerial, IsComputedFromTheMachineId) {
    const auto first = serialWith("0123456789abcdef0123456789abcdef\n");
    if (!first) GTEST_SKIP() << kSkipped;
    EXPECT_EQ(first, 0x86D04DB5u);
    EXPECT_EQ(serialWith("1123456789abcdef0123456789abcdef"), 0x9838B414u);
}

TEST(SystemSerial, IsThatOfTheFileSystemWithoutAMachineId) {
    struct statvfs volume {};
    ASSERT_EQ(::statvfs("/", &volume), 0);
    const auto expected = static_cast<DWORD>(volume.f_fsid);
    for (const char* content :
         {"", "uninitialized\n", "0123456789abcdef0123456789abcde\n",
          "0123456789abcdef0123456789abcdef0\n", "0123456789abcdeg0123456789abcdef\n"}) {
        const auto serial = serialWith(content);
        if (!serial) GTEST_SKIP() << kSkipped;
        EXPECT_EQ(serial, expected) << content;
    }
}

TEST(SystemSerial, IsTheSameEachTime) {
    EXPECT_EQ(port::systemSerial(), port::systemSerial());
}

}  // namespace
