#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

// Takes `count` numbers in either direction.
void skipNumbers(CArchive& ar, DWORD count) {
    for (DWORD i = 0; i < count; ++i) ar.MapObject(nullptr);
}

TEST(ArchiveObjects, AreWrittenAsTagsAndFields) {
    Foo one(1), two(2);
    SubFoo sub;
    Fixed fixed;
    Link outer, inner;
    outer.m_other = &inner;
    inner.m_other = &outer;
    const struct {
        std::function<void(CArchive&)> write;
        const char* bytes;
    } rows[] = {
        {[](auto& ar) { ar << static_cast<CObject*>(nullptr); }, "00 00"},
        // A class is stored once, and so is an object.
        {[&](auto& ar) { ar << &one << &two << &one; },
         "FF FF DF 07 03 00 'Foo' 01 00 00 00  01 80 02 00 00 00  02 00"},
        // Both take their numbers from one sequence.
        {[&](auto& ar) { ar << &one << &sub << &fixed << &fixed << &sub; },
         "FF FF DF 07 03 00 'Foo' 01 00 00 00  FF FF 03 00 06 00 'SubFoo' 00 00 00 00 00"
         "FF FF 07 00 05 00 'Fixed' 00 00  06 00  04 00"},
        // An object is numbered before its fields.
        {[&](auto& ar) { ar << &outer; }, "FF FF 09 00 04 00 'Link'  01 80  02 00"},
        // One that serialises itself has no tag and no number.
        {[&](auto& ar) {
             one.Serialize(ar);
             CreatableOnly().Serialize(ar);
             ar << &one << &one;
         },
         "01 00 00 00  FF FF DF 07 03 00 'Foo' 01 00 00 00  02 00"},
        {[&](auto& ar) {
             ar.MapObject(&one);
             ar << &two << &one << &two;
         },
         "FF FF DF 07 03 00 'Foo' 02 00 00 00  01 00  03 00"},
        {[&](auto& ar) {
             ar.WriteClass(RUNTIME_CLASS(Foo));
             ar.WriteClass(RUNTIME_CLASS(Foo));
             ar << &one << &one;
         },
         "FF FF DF 07 03 00 'Foo'  01 80  01 80 01 00 00 00  02 00"},
        // Short tags end at 7FFE.
        {[&](auto& ar) {
             skipNumbers(ar, 0x7FFC);
             ar << &one << &one << &two << &two;
         },
         "FF FF DF 07 03 00 'Foo' 01 00 00 00  FE 7F  FD FF 02 00 00 00  FF 7F FF 7F 00 00"},
        {[&](auto& ar) {
             skipNumbers(ar, 0x7FFD);
             ar << &one << &two << &one << &two;
         },
         "FF FF DF 07 03 00 'Foo' 01 00 00 00  FE FF 02 00 00 00"
         "FF 7F FF 7F 00 00  FF 7F 00 80 00 00"},
        {[&](auto& ar) {
             skipNumbers(ar, 0x7FFE);
             ar << &one << &two << &two;
         },
         "FF FF DF 07 03 00 'Foo' 01 00 00 00  FF 7F FF 7F 00 80 02 00 00 00  FF 7F 01 80 00 00"},
    };
    // Each archive numbers afresh.
    for (const auto& row : rows) EXPECT_EQ(toHex(stored(row.write)), hex(row.bytes));
}

TEST(ArchiveObjects, CyclesAreReadBackAsCycles) {
    Loading in(fromHex("FF FF 09 00 04 00 'Link'  01 80  02 00"));
    Link* outer = nullptr;
    in.ar >> outer;
    Link* inner = static_cast<Link*>(outer->m_other);
    EXPECT_EQ(inner->m_other, outer);
    delete inner;
    delete outer;
}

TEST(ArchiveObjects, AreReadBackWithTheirClassAndFields) {
    SubFoo sub;
    sub.m_value = -5;
    sub.m_extra = 7;
    Loading in(stored([&](CArchive& ar) { ar << &sub; }));
    Foo* object = nullptr;
    in.ar >> object;
    const std::unique_ptr<Foo> owner(object);
    ASSERT_EQ(object->GetRuntimeClass(), RUNTIME_CLASS(SubFoo));
    EXPECT_EQ(static_cast<SubFoo*>(object)->m_value, -5);
    EXPECT_EQ(static_cast<SubFoo*>(object)->m_extra, 7);
}

TEST(ArchiveObjects, ReferencesAreReadBackAsTheSameObject) {
    Loading in(fromHex("FF FF DF 07 03 00 'Foo' 01 00 00 00  02 00  02 00  00 00"));
    Foo *first = nullptr, *second = nullptr;
    CObject* third = nullptr;
    in.ar >> first >> second >> third;
    EXPECT_EQ(first, second);
    EXPECT_EQ(first, third);
    EXPECT_EQ(first->m_value, 1);
    in.ar >> third;
    EXPECT_EQ(third, nullptr);
    delete first;
}

TEST(ArchiveObjects, MapObjectIsFoundWhenReading) {
    Loading in(fromHex("FF FF DF 07 03 00 'Foo' 02 00 00 00  01 00  03 00"));
    Foo owner;
    in.ar.MapObject(&owner);
    Foo *element = nullptr, *first = nullptr, *again = nullptr;
    in.ar >> element >> first >> again;
    EXPECT_EQ(first, &owner);
    EXPECT_EQ(again, element);
    delete element;
}

TEST(ArchiveObjects, ReadClassReturnsClassAndSchema) {
    Loading in(fromHex("FF FF 05 00 03 00 'Foo'  01 80  01 80 01 00 00 00  02 00"));
    UINT schema = 0;
    EXPECT_EQ(in.ar.ReadClass(RUNTIME_CLASS(Foo), &schema), RUNTIME_CLASS(Foo));
    EXPECT_EQ(schema, 5u);
    EXPECT_EQ(in.ar.ReadClass(), RUNTIME_CLASS(Foo));
    Foo *foo = nullptr, *again = nullptr;
    in.ar >> foo >> again;
    EXPECT_EQ(foo, again);
    delete foo;
}

TEST(ArchiveObjects, ReadClassReturnsTheNumberOfAnObject) {
    Loading in(fromHex("05 00  00 00  FF 7F 01 80 00 00"));
    DWORD tag = 99;
    EXPECT_EQ(in.ar.ReadClass(nullptr, nullptr, &tag), nullptr);
    EXPECT_EQ(tag, 5u);
    EXPECT_EQ(in.ar.ReadClass(nullptr, nullptr, &tag), nullptr);
    EXPECT_EQ(tag, 0u);
    EXPECT_EQ(in.ar.ReadClass(nullptr, nullptr, &tag), nullptr);
    EXPECT_EQ(tag, 0x8001u);
}

TEST(ArchiveObjects, ClassNamesHaveAtMost63Characters) {
    Name63xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx longest;
    const Bytes bytes = stored([&](CArchive& ar) { ar << &longest; });
    EXPECT_EQ(bytes.size(), 6u + 63u);
    CObject* object = nullptr;
    Loading(bytes).ar >> object;
    EXPECT_TRUE(object->IsKindOf(longest.GetRuntimeClass()));
    delete object;

    Name64xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx tooLong;
    EXPECT_TRUE(
        throwsA<CNotSupportedException>([&] { stored([&](CArchive& ar) { ar << &tooLong; }); }));
}

TEST(ArchiveNumbers, LongTagsAreRead) {
    Loading in(
        fromHex("FF FF DF 07 03 00 'Foo' 01 00 00 00"
                "FF 7F FF 7F 00 80 02 00 00 00  FF 7F 01 80 00 00  FF 7F 00 80 00 00"));
    skipNumbers(in.ar, 0x7FFE);
    Foo *one = nullptr, *two = nullptr, *twoAgain = nullptr, *oneAgain = nullptr;
    in.ar >> one >> two >> twoAgain >> oneAgain;
    EXPECT_EQ(two->m_value, 2);
    EXPECT_EQ(two, twoAgain);
    EXPECT_EQ(one, oneAgain);
    delete one;
    delete two;
}

// Seventy thousand objects, then each once more as a reference.
TEST(ArchiveNumbers, ManyObjectsAreReadBackOnceEach) {
    constexpr INT_PTR kObjects = 70000;
    CObArray written;
    for (INT_PTR i = 0; i < kObjects; ++i) written.Add(new Foo(static_cast<int>(i)));
    for (INT_PTR i = 0; i < kObjects; ++i) written.Add(written[i]);
    const Bytes bytes = stored([&](CArchive& ar) { written.Serialize(ar); });
    for (INT_PTR i = 0; i < kObjects; ++i) delete written[i];
    // The class has number 1, so its tag stays short however many objects follow; the tags of
    // objects become long at number 7FFF.
    constexpr size_t kShort = 0x7FFE - 1;
    EXPECT_EQ(bytes.size(),
              6 + 9 + 4 + (kObjects - 1) * (2 + 4) + 2 * kShort + 6 * (kObjects - kShort));
    EXPECT_EQ(toHex(Bytes(bytes.begin(), bytes.begin() + 25)),
              hex("FF FF E0 22 02 00  FF FF DF 07 03 00 'Foo' 00 00 00 00  01 80 01 00 00 00"));
    Loading in(bytes);

    CObArray read;
    read.Serialize(in.ar);
    ASSERT_EQ(read.GetSize(), 2 * kObjects);
    EXPECT_EQ(in.ar.BytesLeft(), 0u);
    for (INT_PTR i = 0; i < kObjects; ++i) {
        ASSERT_EQ(static_cast<Foo*>(read[i])->m_value, i);
        ASSERT_EQ(read[i], read[kObjects + i]);
    }
    for (INT_PTR i = 0; i < kObjects; ++i) delete read[i];
}

TEST(ArchiveNumbers, EndAt3ffffffe) {
    if (std::getenv("NY_SLOW_TESTS") == nullptr) {
        GTEST_SKIP() << "Counts through a billion numbers; set NY_SLOW_TESTS to run it.";
    }
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    for (DWORD i = 0; i < 0x3FFFFFFE; ++i) ar.MapObject(nullptr);
    EXPECT_EQ(archiveCause([&] { ar.MapObject(nullptr); }), CArchiveException::badIndex);
    Foo foo;
    EXPECT_EQ(archiveCause([&] { ar << &foo; }), CArchiveException::badIndex);
}

TEST(ArchiveObjects, UnserialisableClassesAreNotSupported) {
    const auto notSupported = [](auto action) { return throwsA<CNotSupportedException>(action); };
    DynamicOnly dynamic;
    CreatableOnly creatable;
    const auto store = [](auto write) { return [write] { stored(write); }; };
    EXPECT_TRUE(notSupported(store([&](CArchive& ar) { ar << &dynamic; })));
    EXPECT_TRUE(notSupported(store([&](CArchive& ar) { ar << &creatable; })));
    EXPECT_TRUE(notSupported(store([](CArchive& ar) { ar.WriteClass(RUNTIME_CLASS(CObject)); })));
    Loading in(fromHex("00 00"));
    EXPECT_TRUE(notSupported([&] { in.ar.ReadClass(RUNTIME_CLASS(DynamicOnly)); }));
    EXPECT_TRUE(notSupported([&] { in.ar.ReadObject(RUNTIME_CLASS(CreatableOnly)); }));
}

}  // namespace
