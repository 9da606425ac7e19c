// What the machine's identity is made of, beside what the system says; and what stays as it is.
#include <gtest/gtest.h>

#include "NyServer/base/port/Port.h"
#include "NyServer/host/NyFctIpUtil.h"
#include "tests/support/windows/WinsockStarts.h"

// After the prelude, which it needs.
#include <iphlpapi.h>

namespace {

TEST(IpAddress, LeavesWindowsSocketsUnchanged) {
    ASSERT_EQ(WinsockStarts::count(), 0);
    NyFctIpUtil::_getIpAddress();
    NyFctIpUtil::_getIpAddressFromHostName(L"127.0.0.1");
    NyFctIpUtil::_getIpAddressFromHostName(CString(L'x', 64));
    NyFctIpUtil::getStrMachineID();
    EXPECT_EQ(WinsockStarts::count(), 0);
}

TEST(Adapters, AreTheSystemsInItsOrder) {
    std::vector<IP_ADAPTER_INFO> infos(100);
    ULONG size = static_cast<ULONG>(infos.size() * sizeof infos[0]);
    const bool hasAdapters = ::GetAdaptersInfo(infos.data(), &size) == ERROR_SUCCESS;
    const std::vector<port::Adapter> adapters = port::adapters();
    size_t count = 0;
    for (const auto* info = hasAdapters ? infos.data() : nullptr; info; info = info->Next) {
        ASSERT_LT(count, adapters.size());
        const port::Adapter& adapter = adapters[count++];
        EXPECT_EQ(adapter.hardwareAddress,
                  std::vector<BYTE>(info->Address, info->Address + info->AddressLength));
        ASSERT_FALSE(adapter.addresses.empty());
        EXPECT_EQ(adapter.addresses[0], info->IpAddressList.IpAddress.String);
    }
    EXPECT_EQ(count, adapters.size());
}

TEST(VolumeSerial, IsThatOfDriveC) {
    DWORD serial = 0;
    ::GetVolumeInformationW(L"C:\\", nullptr, 0, &serial, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(port::systemSerial(), serial);
}

}  // namespace
