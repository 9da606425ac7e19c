#include "NyServer/host/NyFctIpUtil.h"

#include <gtest/gtest.h>

#include "NyServer/host/MachineIdentity.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/WinsockStarts.h"

namespace {

// What the stack itself says about a host, "" when it says nothing.
CString lookUp(const char* name) {
    const WinsockStarts winsock(1);
    const hostent* host = ::gethostbyname(name);
    if (host == nullptr) return {};
    in_addr address;
    std::memcpy(&address, host->h_addr_list[0], sizeof address);
    return CString(::inet_ntoa(address));
}

CString lookUpLocalHost() {
    const WinsockStarts winsock(1);
    char name[256] = "";
    ::gethostname(name, sizeof name);
    return lookUp(name);
}

// A part of a host name takes at most 63 bytes, so no name service is asked for this one.
const CString kNoHost(L'x', 64);

TEST(IpAddress, IsTheFirstOfTheLocalHostName) {
    ASSERT_FALSE(lookUpLocalHost().IsEmpty());
    EXPECT_EQ(NyFctIpUtil::_getIpAddress(), lookUpLocalHost());
}

TEST(IpAddress, LeavesWindowsSocketsUnchanged) {
    ASSERT_EQ(WinsockStarts::count(), 0);
    NyFctIpUtil::_getIpAddress();
    NyFctIpUtil::_getIpAddressFromHostName(L"127.0.0.1");
    NyFctIpUtil::_getIpAddressFromHostName(kNoHost);
    NyFctIpUtil::getStrMachineID();
    EXPECT_EQ(WinsockStarts::count(), 0);
}

// An address of any length by its leading zeros.
CString addressOfLength(int length) {
    const CString network = L"127.0.0.";
    return network + CString(L'0', length - network.GetLength() - 1) + L"1";
}

// Longer names are not cut: they would be those of other hosts.
TEST(IpAddressFromHostName, ResolvesNamesOfUpTo255Bytes) {
    const std::pair<CString, LPCWSTR> rows[] = {{L"127.0.0.1", L"127.0.0.1"},
                                                {addressOfLength(255), L"127.0.0.1"},
                                                {addressOfLength(256), L""},
                                                {addressOfLength(300), L""},
                                                {kNoHost, L""},
                                                {L"127.0.0.1." + kNoHost, L""}};
    for (const auto& [name, address] : rows)
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(name), address) << name.GetLength();
    for (const int length : {254, 255, 256, 257, 1000, 100000})
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(CString(L'x', length)), CString());
}

// Also while nobody has started Windows Sockets: a host without a name is the local one.
// host-calls-test.sh looks at the order of the calls.
TEST(IpAddressFromHostName, ReturnsTheLocalHostsForLocalhost) {
    const CString address = NyFctIpUtil::_getIpAddressFromHostName(L"localhost");
    EXPECT_EQ(address, lookUpLocalHost());
}

// With Windows Sockets started, "localhost" is this machine's own name, not the loopback's.
TEST(IpAddressFromHostName, ReturnsTheLocalHostsForLocalhostInAnyCase) {
    const WinsockStarts winsock(1);
    for (LPCWSTR name : {L"localhost", L"LocalHost", L"LOCALHOST"}) {
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(name), lookUpLocalHost());
    }
}

TEST(IpAddressFromHostName, LooksUpAnyOtherNameUnchanged) {
    const WinsockStarts winsock(1);
    EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(L"localhost."), lookUp("localhost."));
    EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(L""), lookUp(""));
}

TEST(MachineId, IsTheLocalAdaptersHardwareAddressEachTime) {
    const auto adapters = machineidentity::readAdapters();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(NyFctIpUtil::getStrMachineID(),
                  machineidentity::identityOf(adapters.data(), NyFctIpUtil::_getIpAddress(), L"C"));
    EXPECT_FALSE(NyFctIpUtil::getStrMachineID().IsEmpty());
}

}  // namespace
