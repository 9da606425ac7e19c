#include <gtest/gtest.h>

#include <memory>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

constexpr UINT kUnknown = static_cast<UINT>(-1);

template <class T>
std::unique_ptr<T> next(CArchive& ar) {
    T* object = nullptr;
    ar >> object;
    return std::unique_ptr<T>(object);
}

TEST(ArchiveSchemas, SetOneIsReturnedOnce) {
    CMemFile file;
    EXPECT_EQ(CArchive(&file, CArchive::load).GetObjectSchema(), kUnknown);
    CArchive ar(&file, CArchive::store);
    EXPECT_EQ(ar.GetObjectSchema(), kUnknown);
    ar.SetObjectSchema(0x800007DF);
    EXPECT_EQ(ar.GetObjectSchema(), 0x800007DFu);
    EXPECT_EQ(ar.GetObjectSchema(), kUnknown);
    ar.SetObjectSchema(0);
    EXPECT_EQ(ar.GetObjectSchema(), 0u);
}

TEST(ArchiveSchemas, OfADirectReadIsUnknown) {
    Loading in(fromHex("01 00 00 00"));
    Foo foo;
    foo.Serialize(in.ar);
    EXPECT_EQ(foo.m_schema, kUnknown);
}

TEST(ArchiveSchemas, StoredOneReachesEveryObjectOfItsClass) {
    Loading in(
        fromHex("FF FF 05 00 03 00 'Foo' 01 00 00 00"
                "FF FF 06 00 06 00 'SubFoo' 02 00 00 00 00"
                "01 80 03 00 00 00  03 80 04 00 00 00 00"));
    EXPECT_EQ(next<Foo>(in.ar)->m_schema, 5u);
    EXPECT_EQ(next<Foo>(in.ar)->m_schema, 6u);
    EXPECT_EQ(next<Foo>(in.ar)->m_schema, 5u);
    EXPECT_EQ(next<Foo>(in.ar)->m_schema, 6u);
}

TEST(ArchiveSchemas, StoredZeroAndFfffAreSchemasLikeAnyOther) {
    Loading zero(fromHex("FF FF 00 00 03 00 'Foo' 01 00 00 00  01 80 02 00 00 00"));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(next<Foo>(zero.ar)->m_schema, 0u);
    Loading ffff(fromHex("FF FF FF FF 03 00 'Foo' 01 00 00 00"));
    EXPECT_EQ(next<Foo>(ffff.ar)->m_schema, 0xFFFFu);
}

TEST(ArchiveSchemas, AreReadByReadClassToo) {
    Loading in(fromHex("FF FF 04 00 03 00 'Foo'  01 80 02 00 00 00"));
    in.ar.ReadClass();
    EXPECT_EQ(next<Foo>(in.ar)->m_schema, 4u);
}

TEST(ArchiveSchemas, OuterOneIsRestoredAfterANestedObject) {
    Loading in(fromHex("FF FF 0B 00 04 00 'Link'  FF FF 05 00 03 00 'Foo' 01 00 00 00"));
    const auto link = next<Link>(in.ar);
    const std::unique_ptr<Foo> nested(static_cast<Foo*>(link->m_other));
    EXPECT_EQ(nested->m_schema, 5u);
    EXPECT_EQ(link->m_schemaAfter, 11u);
}

TEST(ArchiveSchemas, CallersIsRestoredAfterAnObjectAndAfterAFailedOne) {
    for (const char* bytes :
         {"FF FF 05 00 03 00 'Foo' 01 00 00 00", "FF FF 05 00 03 00 'Foo' 01"}) {
        Loading in(fromHex(bytes));
        in.ar.SetObjectSchema(77);
        const bool isWhole = in.ar.BytesLeft() > 10;
        EXPECT_EQ(archiveCause([&] { EXPECT_EQ(next<Foo>(in.ar)->m_schema, 5u); }),
                  isWhole ? -1 : CArchiveException::endOfFile);
        EXPECT_EQ(in.ar.GetObjectSchema(), 77u);
    }
}

TEST(ArchiveSchemas, StoringKeepsTheSetOneForTheObject) {
    Foo foo(1);
    stored([&](CArchive& ar) {
        ar.SetObjectSchema(77);
        ar << &foo;
        EXPECT_EQ(ar.GetObjectSchema(), 77u);
    });
}

TEST(ArchiveSchemas, WithoutTheFlagMustBeEqual) {
    EXPECT_EQ(next<Fixed>(Loading(fromHex("FF FF 07 00 05 00 'Fixed' 09 00")).ar)->m_value, 9);
    for (const char* bytes :
         {"FF FF 06 00 05 00 'Fixed' 09 00", "FF FF 08 00 05 00 'Fixed' 09 00",
          "FF FF 00 00 05 00 'Fixed' 09 00", "FF FF 07 80 05 00 'Fixed' 09 00"}) {
        EXPECT_EQ(archiveCause([&] { next<Fixed>(Loading(fromHex(bytes)).ar); }),
                  CArchiveException::badSchema)
            << bytes;
    }
}

}  // namespace
