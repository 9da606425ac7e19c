#include "NyServer/host/MachineIdentity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/CStringPrinter.h"

namespace {

using Bytes = std::vector<BYTE>;

const Bytes kFirst = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
const Bytes kSecond = {0x02, 0xFF, 0x00, 0x10, 0xA0, 0x0B};
const CString kFirstText = L"00-1a-2b-3c-4d-5e";
const CString kSecondText = L"02-ff-00-10-a0-0b";

// Adapters as the system would give them: their hardware and their addresses.
struct Adapter {
    Bytes hardware;
    std::vector<std::string> addresses;
};

// Their list.
class AdapterChain {
  public:
    explicit AdapterChain(const std::vector<Adapter>& adapters) : m_infos(adapters.size()) {
        for (size_t i = 0; i < adapters.size(); ++i) fill(m_infos[i], adapters[i]);
        for (size_t i = 1; i < adapters.size(); ++i) m_infos[i - 1].Next = &m_infos[i];
    }
    // Null when the list is empty.
    IP_ADAPTER_INFO* first() { return m_infos.empty() ? nullptr : m_infos.data(); }

  private:
    void fill(IP_ADAPTER_INFO& info, const Adapter& adapter) {
        info.AddressLength = static_cast<UINT>(adapter.hardware.size());
        std::ranges::copy(adapter.hardware, info.Address);
        IP_ADDR_STRING* place = &info.IpAddressList;
        for (size_t i = 0; i < adapter.addresses.size(); ++i) {
            if (i > 0) place = place->Next = &m_addresses.emplace_back();
            std::strcpy(place->IpAddress.String, adapter.addresses[i].c_str());
        }
    }

    std::vector<IP_ADAPTER_INFO> m_infos;
    std::deque<IP_ADDR_STRING> m_addresses;  // which do not move when more come
};

CString hardwareAddress(const std::vector<Adapter>& adapters, LPCWSTR ipAddress,
                        LPCWSTR separator = L"-") {
    return machineidentity::hardwareAddress(AdapterChain(adapters).first(), ipAddress, separator);
}

TEST(HardwareAddress, IsThatOfTheFirstAdapterWithTheAddressOrElseOfTheLast) {
    const Adapter first{kFirst, {"10.0.0.1"}};
    const Adapter second{kSecond, {"10.0.0.2", "10.0.0.3"}};
    const Adapter none{{}, {"127.0.0.1"}};
    const struct {
        const char* story;
        std::vector<Adapter> adapters;
        LPCWSTR ipAddress;
        CString found;
    } rows[] = {
        {"no adapters", {}, L"10.0.0.1", L""},
        {"neither adapters nor address", {}, L"", L""},
        {"the first", {first, second}, L"10.0.0.1", kFirstText},
        {"the second", {first, second}, L"10.0.0.2", kSecondText},
        {"by its other address", {first, second}, L"10.0.0.3", kSecondText},
        {"the first of two", {first, {kSecond, {"10.0.0.1"}}}, L"10.0.0.1", kFirstText},
        {"none matches", {first, second}, L"192.168.0.1", kSecondText},
        {"no address", {first, second}, L"", kSecondText},
        {"whole addresses only",
         {{kFirst, {"10.0.0.11"}}, {kFirst, {"10.0.0."}}, {kSecond, {"0.0.0.0"}}},
         L"10.0.0.1",
         kSecondText},
        {"any case", {{kFirst, {"fe80::a"}}, second}, L"FE80::A", kFirstText},
        {"no address of an adapter without one", {{kFirst, {""}}, second}, L"", kFirstText},
        {"an adapter without hardware", {first, none}, L"127.0.0.1", L""},
        {"the last without hardware", {first, none}, L"192.168.0.1", L""},
        {"before one without hardware", {first, none}, L"10.0.0.1", kFirstText},
        {"one byte", {{{0x0F}, {"10.0.0.1"}}}, L"10.0.0.1", L"0f"},
        {"eight bytes",
         {{{1, 2, 3, 4, 5, 6, 7, 0xF8}, {"10.0.0.1"}}},
         L"10.0.0.1",
         L"01-02-03-04-05-06-07-f8"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(hardwareAddress(row.adapters, row.ipAddress), row.found) << row.story;
}

TEST(HardwareAddress, JoinsThePairsByAnySeparator) {
    const Adapter adapter{kFirst, {"10.0.0.1"}};
    EXPECT_EQ(hardwareAddress({adapter}, L"10.0.0.1", L""), L"001a2b3c4d5e");
    EXPECT_EQ(hardwareAddress({adapter}, L"10.0.0.1", L", "), L"00, 1a, 2b, 3c, 4d, 5e");
}

TEST(HardwareAddress, ReadsNoByteBeyondTheEight) {
    AdapterChain chain({{{1, 2, 3, 4, 5, 6, 7, 8}, {"10.0.0.1"}}});
    chain.first()->AddressLength = 1000;
    EXPECT_EQ(machineidentity::hardwareAddress(chain.first(), L"10.0.0.1", L"-"),
              L"01-02-03-04-05-06-07-08");
}

DWORD systemVolumeSerial() {
    DWORD serial = 0;
    ::GetVolumeInformationW(L"C:\\", nullptr, 0, &serial, nullptr, nullptr, nullptr, 0);
    return serial;
}

TEST(VolumeSerial, IsLowerCaseHexWithoutLeadingZerosAndZeroWithoutAVolume) {
    char expected[16];
    std::snprintf(expected, sizeof expected, "%lx", systemVolumeSerial());
    EXPECT_EQ(machineidentity::volumeSerial(L"C"), CString(expected));
    EXPECT_EQ(machineidentity::volumeSerial(L"not a drive"), L"0");
}

CString identityOf(const std::vector<Adapter>& adapters, LPCWSTR ipAddress, LPCWSTR drive = L"C") {
    return machineidentity::identityOf(AdapterChain(adapters).first(), ipAddress, drive);
}

TEST(Identity, IsTheVolumesSerialWithoutAnyHardwareAddress) {
    const CString serial = machineidentity::volumeSerial(L"C");
    EXPECT_EQ(identityOf({}, L"10.0.0.1"), serial) << "without adapters";
    EXPECT_EQ(identityOf({}, L"10.0.0.1", L"not a drive"), L"0");
    EXPECT_EQ(identityOf({{{}, {"127.0.0.1"}}}, L"127.0.0.1"), serial);
    EXPECT_EQ(identityOf({{kFirst, {"10.0.0.1"}}, {kSecond, {"10.0.0.2"}}}, L"10.0.0.2"),
              kSecondText);
}

std::vector<std::string> namesIn(const std::vector<IP_ADAPTER_INFO>& adapters) {
    std::vector<std::string> names;
    for (const IP_ADAPTER_INFO* one = adapters.data(); one != nullptr; one = one->Next) {
        names.emplace_back(one->AdapterName);
    }
    return names;
}

TEST(AdapterList, IsTheSystems) {
    ULONG size = 0;
    const bool hasAdapters = ::GetAdaptersInfo(nullptr, &size) == ERROR_BUFFER_OVERFLOW;
    const auto adapters = machineidentity::readAdapters();
    EXPECT_EQ(hasAdapters, adapters[0].AdapterName[0] != 0);
    EXPECT_GE(adapters.size() * sizeof adapters[0], 11264u);
    EXPECT_GE(adapters.size() * sizeof adapters[0], size);
}

// A system with so many adapters, and one more at each of as many questions after the first.
class AdapterSystem {
  public:
    AdapterSystem(size_t count, int growths) : m_count(count), m_growths(growths) {}

    DWORD answer(IP_ADAPTER_INFO* buffer, ULONG* size) {
        if (!sizes.empty() && m_growths-- > 0) ++m_count;
        const ULONG wanted = static_cast<ULONG>(m_count * sizeof *buffer);
        sizes.push_back(*size);
        if (std::exchange(*size, wanted) < wanted) return ERROR_BUFFER_OVERFLOW;
        for (size_t i = 0; i < m_count; ++i) {
            std::snprintf(buffer[i].AdapterName, sizeof buffer[i].AdapterName, "%zu", i);
            buffer[i].Next = i + 1 < m_count ? &buffer[i + 1] : nullptr;
        }
        return ERROR_SUCCESS;
    }
    std::vector<IP_ADAPTER_INFO> read(size_t expectedCount) {
        return machineidentity::readAdapters(
            expectedCount,
            [this](IP_ADAPTER_INFO* buffer, ULONG* size) { return answer(buffer, size); });
    }

    std::vector<ULONG> sizes;

  private:
    size_t m_count;
    int m_growths;
};

TEST(AdapterList, GrowsToTheSizeThatTheSystemRequiresUpToEightTimes) {
    const struct {
        size_t count;
        int growths;
        size_t expected;
        std::vector<size_t> rooms;  // in adapters
        size_t found;
    } rows[] = {
        {16, 0, 16, {16}, 16},
        {40, 0, 16, {16, 40}, 40},
        {38, 2, 1, {1, 38, 39, 40}, 40},
        {2, 6, 1, {1, 2, 3, 4, 5, 6, 7, 8}, 8},
        {2, 99, 1, {1, 2, 3, 4, 5, 6, 7, 8}, 1},  // never enough: one without a name
    };
    for (const auto& row : rows) {
        AdapterSystem system(row.count, row.growths);
        const std::vector<std::string> names = namesIn(system.read(row.expected));
        EXPECT_EQ(names.size(), row.found) << row.count;
        EXPECT_EQ(names[0].empty(), row.growths == 99);
        std::vector<ULONG> sizes;
        for (const size_t room : row.rooms) sizes.push_back(room * sizeof(IP_ADAPTER_INFO));
        EXPECT_EQ(system.sizes, sizes) << row.count;
    }
}

TEST(AdapterList, IsEmptyWhenTheSystemFails) {
    for (const DWORD error : {ERROR_NO_DATA, ERROR_NOT_SUPPORTED, ERROR_INVALID_PARAMETER}) {
        int questions = 0;
        const auto adapters = machineidentity::readAdapters(2, [&](IP_ADAPTER_INFO*, ULONG*) {
            ++questions;
            return error;
        });
        EXPECT_EQ(namesIn(adapters), std::vector<std::string>{""});
        EXPECT_EQ(questions, 1);
    }
}

TEST(AdapterList, PointsIntoItsOwnMemory) {
    const auto adapters = machineidentity::readAdapters(1);
    EXPECT_EQ(namesIn(adapters), namesIn(machineidentity::readAdapters()));
    for (const IP_ADAPTER_INFO* one = adapters.data(); one->Next != nullptr; one = one->Next) {
        EXPECT_GE(one->Next, &adapters.front());
        EXPECT_LE(one->Next, &adapters.back());
    }
}

}  // namespace
