#include "NyServer/host/NyFctIpUtil.h"

#include <gtest/gtest.h>

#include "NyServer/host/MachineIdentity.h"
#include "tests/socket/Peers.h"
#include "tests/support/CStringPrinter.h"

namespace {

// The first address of a host, "" when it has none.
CString lookUp(const char* name) {
    const peers::WinsockSession winsock;
    in_addr address{};
    return port::lookUpAddress(name, address) ? CString(::inet_ntoa(address)) : CString();
}

// Where the system only knows a loopback address of the local host, an adapter has the one meant.
CString lookUpLocalHost() {
    const peers::WinsockSession winsock;
    char name[256] = "";
    ::gethostname(name, sizeof name);
    const CString found = lookUp(name);
    if (found.Left(4) != _T("127.")) return found;
    for (const port::Adapter& adapter : port::adapters())
        for (const std::string& address : adapter.addresses) return CString(address.c_str());
    return found;
}

// A part of a host name takes at most 63 bytes, so no name service is asked for this one.
const CString kNoHost(_T('x'), 64);

TEST(IpAddress, IsTheFirstOfTheLocalHostNameButOfAnAdapterIfThereIsOne) {
    ASSERT_FALSE(lookUpLocalHost().IsEmpty());
    EXPECT_EQ(NyFctIpUtil::_getIpAddress(), lookUpLocalHost());
}

// An address of any length by its leading zeros.
CString addressOfLength(int length) {
    const CString network = _T("127.0.0.");
    return network + CString(_T('0'), length - network.GetLength() - 1) + _T("1");
}

// Longer names are not cut: they would be those of other hosts.
TEST(IpAddressFromHostName, ResolvesNamesOfUpTo255Bytes) {
    const std::pair<CString, LPCTSTR> rows[] = {{_T("127.0.0.1"), _T("127.0.0.1")},
                                                {addressOfLength(255), _T("127.0.0.1")},
                                                {addressOfLength(256), _T("")},
                                                {addressOfLength(300), _T("")},
                                                {kNoHost, _T("")},
                                                {_T("127.0.0.1.") + kNoHost, _T("")}};
    for (const auto& [name, address] : rows)
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(name), address) << name.GetLength();
    for (const int length : {254, 255, 256, 257, 1000, 100000})
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(CString(_T('x'), length)), CString());
}

// Also while nobody has started Windows Sockets: a host without a name is the local one.
// windows/host-calls-test.sh looks at the order of the calls.
TEST(IpAddressFromHostName, ReturnsTheLocalHostsForLocalhost) {
    const CString address = NyFctIpUtil::_getIpAddressFromHostName(_T("localhost"));
    EXPECT_EQ(address, lookUpLocalHost());
}

// With Windows Sockets started, "localhost" is this machine's own name, not the loopback's.
TEST(IpAddressFromHostName, ReturnsTheLocalHostsForLocalhostInAnyCase) {
    const peers::WinsockSession winsock;
    for (LPCTSTR name : {_T("localhost"), _T("LocalHost"), _T("LOCALHOST")}) {
        EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(name), lookUpLocalHost());
    }
}

TEST(IpAddressFromHostName, LooksUpAnyOtherNameUnchanged) {
    const peers::WinsockSession winsock;
    EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(_T("localhost.")), lookUp("localhost."));
    EXPECT_EQ(NyFctIpUtil::_getIpAddressFromHostName(_T("")), lookUpLocalHost());
}

TEST(MachineId, IsTheLocalAdaptersHardwareAddressOrElseTheSystemsSerialEachTime) {
    const CString hardware =
        machineidentity::hardwareAddress(port::adapters(), NyFctIpUtil::_getIpAddress(), _T("-"));
    const CString expected =
        hardware.IsEmpty() ? machineidentity::serialText(port::systemSerial()) : hardware;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(NyFctIpUtil::getStrMachineID(), expected);
    EXPECT_FALSE(expected.IsEmpty());
}

}  // namespace
