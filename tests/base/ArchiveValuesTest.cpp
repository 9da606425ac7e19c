#include <gtest/gtest.h>

#include <bit>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

template <class T>
std::string valueHex(T value) {
    return toHex(stored([&](CArchive& ar) { ar << value; }));
}

template <class T>
T loaded(const Bytes& bytes) {
    Loading in(bytes);
    T value{};
    in.ar >> value;
    return value;
}

CString textOf(size_t length) {
    CString text;
    LPWSTR buffer = text.GetBufferSetLength(static_cast<int>(length));
    for (size_t i = 0; i < length; ++i) buffer[i] = static_cast<WCHAR>(0x3041 + i % 80);
    return text;
}

template <class T>
void expectTravels(T value, const char* bytes) {
    EXPECT_EQ(valueHex(value), bytes);
    EXPECT_EQ(valueHex(loaded<T>(fromHex(bytes))), bytes);
}

TEST(ArchiveValues, AreStoredAsTheirLittleEndianBytes) {
    expectTravels(BYTE{0xFE}, "FE");
    expectTravels('A', "41");
    expectTravels(static_cast<char>(-128), "80");
    expectTravels(true, "01");
    expectTravels(false, "00");
    expectTravels(WORD{0x1234}, "34 12");
    expectTravels(short{-2}, "FE FF");
    expectTravels(WCHAR{0x20AC}, "AC 20");
    expectTravels(WCHAR{0xD800}, "00 D8");
    expectTravels(-3, "FD FF FF FF");
    expectTravels(0x12345678u, "78 56 34 12");
    expectTravels(LONG{-2}, "FE FF FF FF");
    expectTravels(DWORD{0xFFFFFFFE}, "FE FF FF FF");
    expectTravels(BOOL{TRUE}, "01 00 00 00");
    expectTravels(1.0f, "00 00 80 3F");
    expectTravels(-2.0, "00 00 00 00 00 00 00 C0");
    expectTravels(LONGLONG{-2}, "FE FF FF FF FF FF FF FF");
    expectTravels(ULONGLONG{0x0102030405060708}, "08 07 06 05 04 03 02 01");
    // Numbers that are none keep their bits.
    expectTravels(std::bit_cast<double>(uint64_t{0x7FF4000000000123}), "23 01 00 00 00 00 F4 7F");
    expectTravels(std::bit_cast<float>(uint32_t{0x7FA00123}), "23 01 A0 7F");
}

TEST(ArchiveValues, AnyByteButZeroIsTrue) {
    EXPECT_FALSE(loaded<bool>(fromHex("00")));
    EXPECT_TRUE(loaded<bool>(fromHex("01")));
    EXPECT_EQ(static_cast<int>(loaded<bool>(fromHex("02"))), 1);
    EXPECT_EQ(static_cast<int>(loaded<bool>(fromHex("FF"))), 1);
}

TEST(ArchiveValues, CountsTakeTwoBytesOrSix) {
    const std::pair<size_t, const char*> rows[] = {{0, "00 00"},
                                                   {0x8000, "00 80"},
                                                   {0xFFFE, "FE FF"},
                                                   {0xFFFF, "FF FF FF FF 00 00"},
                                                   {0x10000, "FF FF 00 00 01 00"},
                                                   {0xFFFFFFFE, "FF FF FE FF FF FF"}};
    for (const auto& [count, bytes] : rows) {
        EXPECT_EQ(toHex(stored([n = count](CArchive& ar) { ar.WriteCount(n); })), bytes);
        EXPECT_EQ(Loading(fromHex(bytes)).ar.ReadCount(), count);
    }
    EXPECT_EQ(Loading(fromHex("FF FF 01 00 00 00")).ar.ReadCount(), 1u);
    EXPECT_TRUE(throwsA<CInvalidArgException>(
        [] { stored([](CArchive& ar) { ar.WriteCount(0xFFFFFFFF); }); }));
}

TEST(ArchiveValues, BytesLeftCountsWhatIsUnread) {
    Loading in(fromHex("01 02 03 04 05 06 07"));
    EXPECT_EQ(in.ar.BytesLeft(), 7u);
    WORD word = 0;
    in.ar >> word;
    EXPECT_EQ(in.ar.BytesLeft(), 5u);
    BYTE rest[5];
    in.ar.Read(rest, 5);
    EXPECT_EQ(in.ar.BytesLeft(), 0u);
}

TEST(ArchiveValues, ReadReturnsTheBytesThatArePresent) {
    Loading in(fromHex("01 02 03"));
    BYTE bytes[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(in.ar.Read(bytes, 5), 3u);
    EXPECT_EQ(bytes[2], 3);
    EXPECT_EQ(bytes[3], 9);
    EXPECT_EQ(in.ar.Read(bytes, 5), 0u);
    EXPECT_EQ(in.ar.Read(bytes, 0), 0u);
}

TEST(ArchiveValues, WriteOfNoBytesDoesNothing) {
    EXPECT_EQ(toHex(stored([](CArchive& ar) {
                  ar.Write("abc", 0);
                  ar.Write("abc", -1);
                  ar.Write("abc", 2);
              })),
              hex("'ab'"));
}

struct Prefix {
    size_t length;
    const char* wide;
    const char* narrow;
};

// The prefix of a string for each number of characters at which its form changes.
constexpr Prefix kPrefixes[] = {
    {0, "FF FE FF 00", "00"},
    {1, "FF FE FF 01", "01"},
    {254, "FF FE FF FE", "FE"},
    {255, "FF FE FF FF FF 00", "FF FF 00"},
    {65533, "FF FE FF FF FD FF", "FF FD FF"},
    {65534, "FF FE FF FF FF FF FE FF 00 00", "FF FF FF FE FF 00 00"},
    {65535, "FF FE FF FF FF FF FF FF 00 00", "FF FF FF FF FF 00 00"},
};

class StringPrefix : public testing::TestWithParam<Prefix> {};

INSTANTIATE_TEST_SUITE_P(ArchiveValues, StringPrefix, testing::ValuesIn(kPrefixes),
                         [](const auto& each) { return std::to_string(each.param.length); });

TEST_P(StringPrefix, IsWrittenInBothWidths) {
    const Prefix& prefix = GetParam();
    const auto written = [&](BOOL unicode) {
        return toHex(
            stored([&](CArchive& ar) { AfxWriteStringLength(ar, prefix.length, unicode); }));
    };
    EXPECT_EQ(written(TRUE), prefix.wide);
    EXPECT_EQ(written(FALSE), prefix.narrow);
}

TEST_P(StringPrefix, IsReadInBothWidths) {
    const Prefix& prefix = GetParam();
    int charSize = 0;
    EXPECT_EQ(AfxReadStringLength(Loading(fromHex(prefix.wide)).ar, charSize), prefix.length);
    EXPECT_EQ(charSize, 2);
    EXPECT_EQ(AfxReadStringLength(Loading(fromHex(prefix.narrow)).ar, charSize), prefix.length);
    EXPECT_EQ(charSize, 1);
}

TEST_P(StringPrefix, PrecedesTheUnitsOfAString) {
    const CString text = textOf(GetParam().length);
    const Bytes bytes = stored([&](CArchive& ar) { ar << text; });
    const Bytes prefix = fromHex(GetParam().wide);
    ASSERT_EQ(bytes.size(), prefix.size() + 2 * GetParam().length);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(prefix.size())), prefix);
    EXPECT_TRUE(unitsOf(loaded<CString>(bytes)) == unitsOf(text));
}

TEST_P(StringPrefix, PrecedesTheBytesOfANarrowString) {
    const Bytes text = repeated(fromHex("'x'"), GetParam().length);
    const CString read = loaded<CString>(fromHex(GetParam().narrow) + text);
    EXPECT_TRUE(read == CString(WCHAR('x'), static_cast<int>(GetParam().length)));
    EXPECT_EQ(static_cast<size_t>(read.GetLength()), GetParam().length);
}

TEST(ArchiveStrings, AreTheMarkTheLengthAndTheUnits) {
    expectTravels(CString(_T("A")), "FF FE FF 01 41 00");
    expectTravels(CString(), "FF FE FF 00");
    expectTravels(CString(_T("\U0001F600")), "FF FE FF 02 3D D8 00 DE");
    expectTravels(CString(_T("a\0b"), 3), "FF FE FF 03 61 00 00 00 62 00");
    expectTravels(CString(WCHAR{0xDC00}), "FF FE FF 01 00 DC");
}

TEST(ArchiveStrings, WithoutTheMarkAreConverted) {
    EXPECT_EQ(loaded<CString>(fromHex("03 'abc'")), _T("abc"));
    EXPECT_EQ(loaded<CString>(fromHex("00")), _T(""));
    EXPECT_EQ(unitsOf(loaded<CString>(fromHex("03 61 00 62"))), unitsOf(CString(_T("a\0b"), 3)));
}

TEST(ArchiveStrings, AreReadFromLongerFormsThanNeeded) {
    EXPECT_EQ(loaded<CString>(fromHex("FF 01 00 'a'")), _T("a"));
    EXPECT_EQ(loaded<CString>(fromHex("FF FF FF 01 00 00 00 'a'")), _T("a"));
    EXPECT_EQ(loaded<CString>(fromHex("FF FE FF FF 01 00 61 00")), _T("a"));
    EXPECT_EQ(loaded<CString>(fromHex("FF FE FF FF FF FF 01 00 00 00 61 00")), _T("a"));
}

TEST(ArchiveStrings, TakeFffeAfterTheMarkAsALength) {
    int charSize = 0;
    EXPECT_EQ(AfxReadStringLength(Loading(fromHex("FF FE FF FF FE FF 00")).ar, charSize), 65534u);
    EXPECT_EQ(charSize, 2);
    const CString text = textOf(65534);
    Bytes bytes = stored([&](CArchive& ar) { ar << text; });
    bytes.erase(bytes.begin(), bytes.begin() + 10);
    EXPECT_TRUE(unitsOf(loaded<CString>(fromHex("FF FE FF FF FE FF") + bytes)) == unitsOf(text));
}

TEST(ArchiveStrings, LengthsThatNoStringHasAreRefused) {
    int charSize = 0;
    const auto cause = [&](const char* prefix) {
        return archiveCause([&] { AfxReadStringLength(Loading(fromHex(prefix)).ar, charSize); });
    };
    EXPECT_EQ(cause("FF FF FF 00 00 00 80"), CArchiveException::badIndex);
    EXPECT_EQ(cause("FF FF FF FF FF FF FF"), CArchiveException::badIndex);
    EXPECT_EQ(cause("FF FE FF FF FF FF 00 00 00 80"), CArchiveException::badIndex);
    EXPECT_EQ(cause("FF FE FF FF FF FF FF FF FF FF"), CArchiveException::badIndex);
    EXPECT_EQ(cause("FF FF FF FF FF FF 7F"), -1);
}

TEST(ArchiveStrings, LongerThanTheDataEndIt) {
    for (const char* bytes : {"03 'ab'", "FF 00 01 'ab'", "FF FE FF 02 61 00 62",
                              "FF FE FF FF FF FF FF FF FF 7F 61 00", "FF FF FF FF FF FF 7F 'a'"}) {
        EXPECT_EQ(archiveCause([&] { loaded<CString>(fromHex(bytes)); }),
                  CArchiveException::endOfFile)
            << bytes;
    }
}

TEST(ArchiveStrings, ThatCannotBeReadLeaveTheTargetUnchanged) {
    for (const char* bytes : {"", "FF", "FF FE FF 02 61 00 62", "02 'a'", "FF FF FF 00 00 00 80"}) {
        Loading in(fromHex(bytes));
        CString text(_T("before"));
        EXPECT_NE(archiveCause([&] { in.ar >> text; }), -1) << bytes;
        EXPECT_EQ(text, _T("before"));
    }
}

}  // namespace
