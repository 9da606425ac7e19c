#include "NyServer/host/MachineIdentity.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/CStringPrinter.h"

namespace {

using port::Adapter;
using Bytes = std::vector<BYTE>;

const Bytes kFirst = {0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
const Bytes kSecond = {0x02, 0xFF, 0x00, 0x10, 0xA0, 0x0B};
const CString kFirstText = _T("00-1a-2b-3c-4d-5e");
const CString kSecondText = _T("02-ff-00-10-a0-0b");

CString hardwareAddress(const std::vector<Adapter>& adapters, LPCTSTR ipAddress,
                        LPCTSTR separator = _T("-")) {
    return machineidentity::hardwareAddress(adapters, ipAddress, separator);
}

TEST(HardwareAddress, IsThatOfTheFirstAdapterWithTheAddressOrElseOfTheLast) {
    const Adapter first{kFirst, {"10.0.0.1"}};
    const Adapter second{kSecond, {"10.0.0.2", "10.0.0.3"}};
    const Adapter none{{}, {"127.0.0.1"}};
    const struct {
        const char* story;
        std::vector<Adapter> adapters;
        LPCTSTR ipAddress;
        CString found;
    } rows[] = {
        {"no adapters", {}, _T("10.0.0.1"), _T("")},
        {"neither adapters nor address", {}, _T(""), _T("")},
        {"the first", {first, second}, _T("10.0.0.1"), kFirstText},
        {"the second", {first, second}, _T("10.0.0.2"), kSecondText},
        {"by its other address", {first, second}, _T("10.0.0.3"), kSecondText},
        {"the first of two", {first, {kSecond, {"10.0.0.1"}}}, _T("10.0.0.1"), kFirstText},
        {"none matches", {first, second}, _T("192.168.0.1"), kSecondText},
        {"no address", {first, second}, _T(""), kSecondText},
        {"whole addresses only",
         {{kFirst, {"10.0.0.11"}}, {kFirst, {"10.0.0."}}, {kSecond, {"0.0.0.0"}}},
         _T("10.0.0.1"),
         kSecondText},
        {"any case", {{kFirst, {"fe80::a"}}, second}, _T("FE80::A"), kFirstText},
        {"no address of an adapter without one", {{kFirst, {""}}, second}, _T(""), kFirstText},
        {"an adapter without hardware", {first, none}, _T("127.0.0.1"), _T("")},
        {"the last without hardware", {first, none}, _T("192.168.0.1"), _T("")},
        {"before one without hardware", {first, none}, _T("10.0.0.1"), kFirstText},
        {"one byte", {{{0x0F}, {"10.0.0.1"}}}, _T("10.0.0.1"), _T("0f")},
        {"eight bytes",
         {{{1, 2, 3, 4, 5, 6, 7, 0xF8}, {"10.0.0.1"}}},
         _T("10.0.0.1"),
         _T("01-02-03-04-05-06-07-f8")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(hardwareAddress(row.adapters, row.ipAddress), row.found) << row.story;
}

TEST(HardwareAddress, JoinsThePairsByAnySeparator) {
    const Adapter adapter{kFirst, {"10.0.0.1"}};
    EXPECT_EQ(hardwareAddress({adapter}, _T("10.0.0.1"), _T("")), _T("001a2b3c4d5e"));
    EXPECT_EQ(hardwareAddress({adapter}, _T("10.0.0.1"), _T(", ")), _T("00, 1a, 2b, 3c, 4d, 5e"));
}

TEST(HardwareAddress, IsEmptyWithoutAnyAddress) {
    EXPECT_EQ(hardwareAddress({{kFirst, {}}}, _T("10.0.0.1")), CString());
    EXPECT_EQ(hardwareAddress({{kFirst, {"10.0.0.1"}}, {kSecond, {}}}, _T("")), kFirstText);
}

TEST(SerialText, IsLowerCaseHexWithoutLeadingZeros) {
    EXPECT_EQ(machineidentity::serialText(0), CString("0"));
    EXPECT_EQ(machineidentity::serialText(0x00ABC0DE), CString("abc0de"));
    EXPECT_EQ(machineidentity::serialText(0xFFFFFFFF), CString("ffffffff"));
}

}  // namespace
