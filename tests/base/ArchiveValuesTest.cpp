#include <gtest/gtest.h>

#include <bit>
#include <limits>

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

template <class T>
void roundTrips(T value) {
    EXPECT_EQ(loaded<T>(stored([&](CArchive& ar) { ar << value; })), value);
}

CString textOf(size_t length) {
    CString text;
    LPWSTR buffer = text.GetBufferSetLength(static_cast<int>(length));
    for (size_t i = 0; i < length; ++i) buffer[i] = static_cast<WCHAR>(0x3041 + i % 80);
    return text;
}

TEST(ArchiveValues, TravelAsTheirLittleEndianBytes) {
    EXPECT_EQ(valueHex(BYTE{0xFE}), "FE");
    EXPECT_EQ(valueHex('A'), "41");
    EXPECT_EQ(valueHex(true), "01");
    EXPECT_EQ(valueHex(false), "00");
    EXPECT_EQ(valueHex(WORD{0x1234}), "34 12");
    EXPECT_EQ(valueHex(short{-2}), "FE FF");
    EXPECT_EQ(valueHex(WCHAR{0x20AC}), "AC 20");
    EXPECT_EQ(valueHex(-3), "FD FF FF FF");
    EXPECT_EQ(valueHex(0x12345678u), "78 56 34 12");
    EXPECT_EQ(valueHex(LONG{-2}), "FE FF FF FF");
    EXPECT_EQ(valueHex(DWORD{0xFFFFFFFE}), "FE FF FF FF");
    EXPECT_EQ(valueHex(BOOL{TRUE}), "01 00 00 00");
    EXPECT_EQ(valueHex(1.0f), "00 00 80 3F");
    EXPECT_EQ(valueHex(-2.0), "00 00 00 00 00 00 00 C0");
    EXPECT_EQ(valueHex(LONGLONG{-2}), "FE FF FF FF FF FF FF FF");
    EXPECT_EQ(valueHex(ULONGLONG{0x0102030405060708}), "08 07 06 05 04 03 02 01");
}

TEST(ArchiveValues, ComeBackAsTheyWere) {
    roundTrips(std::numeric_limits<BYTE>::max());
    roundTrips(std::numeric_limits<char>::min());
    roundTrips(std::numeric_limits<short>::min());
    roundTrips(std::numeric_limits<WORD>::max());
    roundTrips(WCHAR{0xD800});
    roundTrips(std::numeric_limits<int>::min());
    roundTrips(std::numeric_limits<unsigned int>::max());
    roundTrips(std::numeric_limits<LONG>::min());
    roundTrips(std::numeric_limits<DWORD>::max());
    roundTrips(std::numeric_limits<LONGLONG>::min());
    roundTrips(std::numeric_limits<ULONGLONG>::max());
    roundTrips(1.5f);
    roundTrips(-0.1);
}

TEST(ArchiveValues, NanBitsPassUnchanged) {
    const auto kDouble = std::bit_cast<double>(uint64_t{0x7FF4000000000123});
    EXPECT_EQ(valueHex(kDouble), "23 01 00 00 00 00 F4 7F");
    EXPECT_EQ(std::bit_cast<uint64_t>(loaded<double>(fromHex("23 01 00 00 00 00 F4 7F"))),
              0x7FF4000000000123u);
    EXPECT_EQ(std::bit_cast<uint32_t>(loaded<float>(fromHex("23 01 A0 7F"))), 0x7FA00123u);
}

TEST(ArchiveValues, AnyByteButZeroIsTrue) {
    EXPECT_FALSE(loaded<bool>(fromHex("00")));
    EXPECT_TRUE(loaded<bool>(fromHex("01")));
    EXPECT_EQ(static_cast<int>(loaded<bool>(fromHex("02"))), 1);
    EXPECT_EQ(static_cast<int>(loaded<bool>(fromHex("FF"))), 1);
}

TEST(ArchiveValues, CountsTakeTwoBytesOrSix) {
    const auto count = [](size_t n) {
        return toHex(stored([&](CArchive& ar) { ar.WriteCount(n); }));
    };
    EXPECT_EQ(count(0), "00 00");
    EXPECT_EQ(count(0x8000), "00 80");
    EXPECT_EQ(count(0xFFFE), "FE FF");
    EXPECT_EQ(count(0xFFFF), "FF FF FF FF 00 00");
    EXPECT_EQ(count(0x10000), "FF FF 00 00 01 00");
    EXPECT_EQ(count(0xFFFFFFFE), "FF FF FE FF FF FF");
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { count(0xFFFFFFFF); }));
}

TEST(ArchiveValues, CountsAreReadInBothForms) {
    EXPECT_EQ(Loading(fromHex("00 00")).ar.ReadCount(), 0u);
    EXPECT_EQ(Loading(fromHex("FE FF")).ar.ReadCount(), 0xFFFEu);
    EXPECT_EQ(Loading(fromHex("FF FF FF FF 00 00")).ar.ReadCount(), 0xFFFFu);
    EXPECT_EQ(Loading(fromHex("FF FF 01 00 00 00")).ar.ReadCount(), 1u);
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

TEST(ArchiveValues, ReadGivesTheBytesThatAreThere) {
    Loading in(fromHex("01 02 03"));
    BYTE bytes[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(in.ar.Read(bytes, 5), 3u);
    EXPECT_EQ(bytes[2], 3);
    EXPECT_EQ(bytes[3], 9);
    EXPECT_EQ(in.ar.Read(bytes, 5), 0u);
    EXPECT_EQ(in.ar.Read(bytes, 0), 0u);
}

TEST(ArchiveValues, WriteTakesNothingForNoBytes) {
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
    EXPECT_EQ(valueHex(CString(_T("A"))), "FF FE FF 01 41 00");
    EXPECT_EQ(valueHex(CString()), "FF FE FF 00");
    EXPECT_EQ(valueHex(CString(_T("\U0001F600"))), "FF FE FF 02 3D D8 00 DE");
}

TEST(ArchiveStrings, KeepZeroCharacters) {
    const CString text(_T("a\0b"), 3);
    EXPECT_EQ(valueHex(text), "FF FE FF 03 61 00 00 00 62 00");
    EXPECT_EQ(unitsOf(loaded<CString>(fromHex("FF FE FF 03 61 00 00 00 62 00"))), unitsOf(text));
    EXPECT_EQ(unitsOf(loaded<CString>(fromHex("03 61 00 62"))), unitsOf(text));
}

TEST(ArchiveStrings, KeepUnpairedSurrogates) {
    const CString text = loaded<CString>(fromHex("FF FE FF 01 00 DC"));
    EXPECT_EQ(int{text.GetAt(0)}, 0xDC00);
    EXPECT_EQ(valueHex(text), "FF FE FF 01 00 DC");
}

TEST(ArchiveStrings, WithoutTheMarkAreConverted) {
    EXPECT_EQ(loaded<CString>(fromHex("03 'abc'")), _T("abc"));
    EXPECT_EQ(loaded<CString>(fromHex("00")), _T(""));
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

TEST(ArchiveStrings, ThatCannotBeReadLeaveTheTargetAsItWas) {
    for (const char* bytes : {"", "FF", "FF FE FF 02 61 00 62", "02 'a'", "FF FF FF 00 00 00 80"}) {
        Loading in(fromHex(bytes));
        CString text(_T("before"));
        EXPECT_NE(archiveCause([&] { in.ar >> text; }), -1) << bytes;
        EXPECT_EQ(text, _T("before"));
    }
}

}  // namespace
