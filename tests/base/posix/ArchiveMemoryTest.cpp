// Memory that a hostile archive can make its reader ask for.
#include <gtest/gtest.h>

#include <afxtempl.h>

#include "tests/base/TestRecords.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

// An exception, an archive's tables and first small blocks.
constexpr size_t kFixedCost = 4096;
// What one byte may cost: an empty string is one byte here and an object of 32 in memory, copied
// as its array doubles.
constexpr size_t kCostPerByte = 128;

template <class Read>
void expectModest(const Bytes& bytes, Read read) {
    Loading in(bytes);
    const AllocationCount count;
    archiveCause([&] { read(in.ar); });
    EXPECT_LE(count.peakBytes(), kFixedCost + kCostPerByte * bytes.size()) << toHex(bytes);
}

void readString(CArchive& ar) {
    CString text;
    ar >> text;
}

TEST(ArchiveMemory, CounterCounts) {
    const AllocationCount count;
    ::operator delete(::operator new(1000));
    EXPECT_EQ(count.peakBytes(), 1000u);
}

TEST(Objects, AreNullOrThrowWithoutMemory) {
    constexpr size_t kBytes = 1000;  // more than comes from the small blocks
    AllocationCount count;
    count.failAfter(0);
    EXPECT_EQ(CObject::operator new(kBytes, std::nothrow), nullptr);
    count.failAfter(0);
    EXPECT_THROW(CObject::operator new(kBytes), std::bad_alloc);
}

TEST(ArchiveMemory, IsBoundedForFalseStringLengths) {
    for (const char* bytes :
         {"FE 'a'", "FF FE FF 'a'", "FF FF FF FF FF FF 7F 'a'", "FF FE FF FE 61 00",
          "FF FE FF FF FE FF 61 00", "FF FE FF FF FF FF FF FF FF 7F 61 00",
          "FF FE FF FF FF FF FF FF FF FF 61 00"}) {
        expectModest(fromHex(bytes), readString);
    }
}

TEST(ArchiveMemory, IsBoundedForFalseCounts) {
    for (const char* bytes : {"FE FF 00 00", "FF FF FF FF FF FF 00 00", "FF FF FE FF FF 7F"}) {
        expectModest(fromHex(bytes), [](CArchive& ar) { OwningArray().Serialize(ar); });
        expectModest(fromHex(bytes), [](CArchive& ar) { CStringArray().Serialize(ar); });
        expectModest(fromHex(bytes), [](CArchive& ar) { CArray<LONG, LONG>().Serialize(ar); });
        expectModest(fromHex(bytes), [](CArchive& ar) { CArray<double>().Serialize(ar); });
    }
}

TEST(ArchiveMemory, IsBoundedForCountsThatAreAlmostCorrect) {
    const Bytes count = fromHex("FF FF 00 00 01 00");
    const Bytes nulls = count + repeated(fromHex("00 00"), 65535);
    expectModest(nulls, [](CArchive& ar) { OwningArray().Serialize(ar); });
    const Bytes strings = count + repeated(fromHex("00"), 65535);
    expectModest(strings, [](CArchive& ar) { CStringArray().Serialize(ar); });
}

TEST(ArchiveMemory, IsBoundedForNestedArraysWithFalseCounts) {
    const Bytes first = fromHex("FF FF 00 00 0B 00 'OwningArray' FF FF FF FF FF FF");
    const Bytes bytes = first + repeated(fromHex("01 80 FF FF FF FF FF FF"), 200);
    expectModest(bytes, [](CArchive& ar) {
        CObject* object = nullptr;
        ar >> object;
    });
}

TEST(ArchiveMemory, IsBoundedForAFalseClassNameLength) {
    expectModest(fromHex("FF FF 00 00 FF FF 'Foo'"), [](CArchive& ar) { ar.ReadClass(); });
}

}  // namespace
