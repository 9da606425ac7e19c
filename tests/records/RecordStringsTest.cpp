// Strings inside a record, at the lengths where their prefix changes.
#include <gtest/gtest.h>

#include "NyServer/records/NySeUser.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

struct Length {
    int characters;
    const char* prefix;
};

class RecordStrings : public ::testing::TestWithParam<Length> {};

TEST_P(RecordStrings, TravelBehindTheirLength) {
    const auto [characters, prefix] = GetParam();
    NySeUser user;
    user.setStrHostName(CString(static_cast<WCHAR>(0x65E5), characters));
    const Bytes bytes = stored([&](CArchive& ar) { user.Serialize(ar); });
    EXPECT_EQ(hex("FFFFFFFF") + " " + hex(prefix),
              toHex(Bytes(bytes.begin(), bytes.begin() + 4 + fromHex(prefix).size())));
    EXPECT_EQ(4 + fromHex(prefix).size() + 2u * static_cast<size_t>(characters) + 8 + 12,
              bytes.size());

    NySeUser loaded;
    Loading loading(bytes);
    loaded.Serialize(loading.ar);
    EXPECT_EQ(unitsOf(user.getStrHostName()), unitsOf(loaded.getStrHostName()));
    EXPECT_EQ(0u, loading.ar.BytesLeft());
}

INSTANTIATE_TEST_SUITE_P(Lengths, RecordStrings,
                         ::testing::Values(Length{0, "FFFEFF 00"}, Length{1, "FFFEFF 01"},
                                           Length{254, "FFFEFF FE"}, Length{255, "FFFEFF FF FF00"},
                                           Length{65533, "FFFEFF FF FDFF"},
                                           Length{65534, "FFFEFF FF FFFF FEFF0000"},
                                           Length{65535, "FFFEFF FF FFFF FFFF0000"}),
                         [](const auto& length) {
                             return std::to_string(length.param.characters);
                         });

int loadHostName(const char* text) {
    NySeUser user;
    Loading loading(fromHex("FFFFFFFF") + fromHex(text));
    return archiveCause([&] { user.Serialize(loading.ar); });
}

TEST(RecordStringLengths, BeyondTheDataAreRefused) {
    for (const char* text : {"FFFEFF 01", "FFFEFF 01 00", "FFFEFF FE 00", "FFFEFF FF FFFE 00",
                             "FFFEFF FF FFFF FFFFFF7F", "05 'Anna'", "FF FFFF FFFFFF7F"}) {
        EXPECT_EQ(CArchiveException::endOfFile, loadHostName(text)) << text;
    }
}

TEST(RecordStringLengths, BeyondAnyStringAreRefused) {
    EXPECT_EQ(CArchiveException::badIndex, loadHostName("FFFEFF FF FFFF 00000080"));
    EXPECT_EQ(CArchiveException::badIndex, loadHostName("FFFEFF FF FFFF FFFFFFFF"));
}

TEST(RecordStringLengths, NarrowStringsAreConverted) {
    NySeUser user;
    Loading loading(fromHex("FFFFFFFF 02'ws' 00 04'Anna' FFFFFFFF 00000000 00000000"));
    user.Serialize(loading.ar);
    EXPECT_EQ(CString("ws"), user.getStrHostName());
    EXPECT_EQ(CString("Anna"), user.getStrComputerName());
}

}  // namespace
