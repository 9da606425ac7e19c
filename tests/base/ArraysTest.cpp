// Arrays of each kind, whose operations are those of one class; and their archives.
#include <gtest/gtest.h>

#include <afxtempl.h>

#include <functional>
#include <memory>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

using Numbers = CArray<LONG, LONG>;
using FooArray = CTypedPtrArray<CObArray, Foo*>;
using Longs = std::vector<LONG>;

Longs valuesOf(const Numbers& array) {
    return {array.GetData(), array.GetData() + array.GetSize()};
}

template <class Value, class Array>
void fill(Array& array, std::initializer_list<Value> values) {
    for (const Value& value : values) array.Add(value);
}

TEST(Arrays, AreEmptyAtFirst) {
    const Numbers array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_TRUE(array.IsEmpty());
}

TEST(Arrays, AddGivesTheIndex) {
    Numbers array;
    EXPECT_EQ(array.Add(5), 0);
    EXPECT_EQ(array.Add(6), 1);
    EXPECT_EQ(array.GetUpperBound(), 1);
    EXPECT_FALSE(array.IsEmpty());
    EXPECT_EQ(array[1], 6);
}

// What `change` does to an array of 1, 2 and 3.
Longs changed(const std::function<void(Numbers&)>& change) {
    Numbers array;
    fill(array, {1, 2, 3});
    change(array);
    return valuesOf(array);
}

TEST(Arrays, GrowWhereTheyAreTold) {
    EXPECT_EQ(changed([](auto& array) { array.InsertAt(1, 9); }), (Longs{1, 9, 2, 3}));
    EXPECT_EQ(changed([](auto& array) { array.InsertAt(3, 8, 2); }), (Longs{1, 2, 3, 8, 8}));
    EXPECT_EQ(changed([](auto& array) { array.InsertAt(5, 9); }), (Longs{1, 2, 3, 0, 0, 9}));
    EXPECT_EQ(changed([](auto& array) { array.SetSize(5); }), (Longs{1, 2, 3, 0, 0}));
    EXPECT_EQ(changed([](auto& array) { array.SetAtGrow(4, 9); }), (Longs{1, 2, 3, 0, 9}));
    EXPECT_EQ(changed([](auto& array) { array.SetAtGrow(0, 9); }), (Longs{9, 2, 3}));
}

TEST(Arrays, ShrinkWhereTheyAreTold) {
    EXPECT_EQ(changed([](auto& array) { array.RemoveAt(0); }), (Longs{2, 3}));
    EXPECT_EQ(changed([](auto& array) { array.RemoveAt(1, 2); }), (Longs{1}));
    EXPECT_EQ(changed([](auto& array) { array.RemoveAt(1, 0); }), (Longs{1, 2, 3}));
    EXPECT_EQ(changed([](auto& array) { array.RemoveAt(3, 0); }), (Longs{1, 2, 3}));
    EXPECT_EQ(changed([](auto& array) { array.SetSize(1); }), (Longs{1}));
}

TEST(Arrays, CopyReplacesTheElements) {
    Numbers source;
    fill(source, {4, 5});
    EXPECT_EQ(changed([&](auto& array) { array.Copy(source); }), (Longs{4, 5}));
    EXPECT_EQ(valuesOf(source), (Longs{4, 5}));
}

TEST(Arrays, FillGapsWithNullOrEmptyElements) {
    CObArray objects;
    Foo foo;
    objects.InsertAt(1, &foo);
    EXPECT_EQ(objects[0], nullptr);
    EXPECT_EQ(objects[1], &foo);
    CStringArray texts;
    texts.SetAtGrow(1, _T("b"));
    EXPECT_EQ(texts[0], _T(""));
    EXPECT_EQ(texts[1], _T("b"));
}

TEST(Arrays, TakeAnElementOfTheirOwn) {
    CStringArray array;
    array.Add(_T("a text that is too long to lie inside the string object"));
    array.SetAtGrow(20, array[0]);
    EXPECT_EQ(array[20], array[0]);
    array.InsertAt(100, array[0]);
    EXPECT_EQ(array[100], array[0]);
    array.InsertAt(0, array[0], 50);
    EXPECT_EQ(array[49], array[50]);
    array.Add(array[0]);
    EXPECT_EQ(array[array.GetUpperBound()], array[0]);
}

TEST(Arrays, RemoveAllKeepsTheObjects) {
    CObArray array;
    Foo foo;
    const int alive = Foo::alive;
    array.Add(&foo);
    array.RemoveAll();
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(Foo::alive, alive);
}

void expectRefused(const std::function<void(Numbers&)>& change) {
    EXPECT_EQ(changed([&](Numbers& array) {
                  EXPECT_TRUE(throwsA<CInvalidArgException>([&] { change(array); }));
              }),
              (Longs{1, 2, 3}));
}

TEST(Arrays, IndicesOutsideAreRefused) {
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{3}, INTPTR_MIN, INTPTR_MAX}) {
        expectRefused([=](auto& array) { array.GetAt(index); });
        expectRefused([=](auto& array) { array.ElementAt(index); });
        expectRefused([=](auto& array) { array[index] = 0; });
        expectRefused([=](auto& array) { array.SetAt(index, 0); });
    }
}

TEST(Arrays, NegativeGrowthIsRefused) {
    expectRefused([](auto& array) { array.SetSize(-1); });
    expectRefused([](auto& array) { array.SetAtGrow(-1, 0); });
    expectRefused([](auto& array) { array.InsertAt(-1, 0); });
    expectRefused([](auto& array) { array.InsertAt(0, 0, 0); });
    expectRefused([](auto& array) { array.InsertAt(0, 0, -1); });
}

TEST(Arrays, RemovalOutsideIsRefused) {
    expectRefused([](auto& array) { array.RemoveAt(-1); });
    expectRefused([](auto& array) { array.RemoveAt(0, -1); });
    expectRefused([](auto& array) { array.RemoveAt(3); });
    expectRefused([](auto& array) { array.RemoveAt(2, 2); });
    expectRefused([](auto& array) { array.RemoveAt(4, 0); });
    expectRefused([](auto& array) { array.RemoveAt(1, INTPTR_MAX); });
}

TEST(Arrays, TypedOnesGiveTheirElementType) {
    FooArray array;
    Foo one(1), two(2);
    array.Add(&two);
    array.InsertAt(0, &one);
    EXPECT_EQ(array[0]->m_value, 1);
    EXPECT_EQ(array.GetAt(1)->m_value, 2);
    EXPECT_EQ(array.ElementAt(1), &two);
    array.SetAt(1, &one);
    array.SetAtGrow(3, &two);
    EXPECT_EQ(array[1], &one);
    EXPECT_EQ(array[2], nullptr);
    EXPECT_EQ(array[3], &two);
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { array.GetAt(4); }));
}

template <class Array>
std::string bytesOf(Array& array) {
    return toHex(stored([&](CArchive& ar) { array.Serialize(ar); }));
}

// That the array is stored as these bytes, and that they replace the contents of another.
template <class Array>
void expectArchived(Array& array, const char* bytes) {
    EXPECT_EQ(bytesOf(array), hex(bytes));
    Loading in(fromHex(bytes) + fromHex("05 06"));
    Array read;
    read.SetSize(5);
    read.Serialize(in.ar);
    EXPECT_EQ(bytesOf(read), hex(bytes));
    EXPECT_EQ(in.ar.BytesLeft(), 2u);
}

TEST(ArrayArchives, OfValuesAreACountAndTheirBytes) {
    Numbers array;
    expectArchived(array, "00 00");
    fill(array, {1, -1});
    expectArchived(array, "02 00 01 00 00 00 FF FF FF FF");
    CArray<BYTE, BYTE> bytes;
    bytes.Add(7);
    expectArchived(bytes, "01 00 07");
}

TEST(ArrayArchives, OfStringsAreACountAndStrings) {
    CStringArray array;
    expectArchived(array, "00 00");
    fill<CString>(array, {_T(""), _T("Ab")});
    expectArchived(array, "02 00 FF FE FF 00 FF FE FF 02 41 00 62 00");
}

TEST(ArrayArchives, OfObjectsAreACountAndObjects) {
    CObArray array;
    expectArchived(array, "00 00");
    Foo one(1), two(2);
    fill<CObject*>(array, {&one, &two, nullptr, &one});
    EXPECT_EQ(bytesOf(array), hex("04 00 FF FF DF 07 03 00 'Foo' 01 00 00 00"
                                  "01 80 02 00 00 00  00 00  02 00"));
}

TEST(ArrayArchives, OfObjectsComeBack) {
    Loading in(fromHex("03 00 FF FF DF 07 03 00 'Foo' 01 00 00 00  00 00  02 00"));
    FooArray array;
    Foo old;
    array.Add(&old);
    array.Serialize(in.ar);
    ASSERT_EQ(array.GetSize(), 3);
    const std::unique_ptr<Foo> owner(array[0]);
    EXPECT_EQ(array[0]->m_value, 1);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_EQ(array[2], array[0]);
}

// The array is stored by pointer as these bytes, and read so.
template <class Array>
std::unique_ptr<Array> archivedByPointer(const Array& array, const char* bytes) {
    EXPECT_EQ(toHex(stored([&](CArchive& ar) { ar << &array; })), hex(bytes));
    Array* read = nullptr;
    Loading(fromHex(bytes)).ar >> read;
    return std::unique_ptr<Array>(read);
}

TEST(ArrayArchives, ByPointerBearTheirClassFirst) {
    CStringArray texts;
    texts.Add(_T("x"));
    EXPECT_EQ(bytesOf(*archivedByPointer(
                  texts, "FF FF 00 00 0C 00 'CStringArray' 01 00 FF FE FF 01 78 00")),
              hex("01 00 FF FE FF 01 78 00"));
    CObArray objects;
    Foo seven(7);
    objects.Add(&seven);
    const auto read = archivedByPointer(
        objects, "FF FF 00 00 08 00 'CObArray' 01 00 FF FF DF 07 03 00 'Foo' 07 00 00 00");
    const std::unique_ptr<CObject> element(read->GetAt(0));
    EXPECT_EQ(static_cast<Foo*>(element.get())->m_value, 7);
}

TEST(ArrayArchives, CountsBeyondFfffComeBack) {
    Numbers array;
    for (LONG i = 0; i < 0x10001; ++i) array.Add(i);
    const Bytes bytes = stored([&](CArchive& ar) { array.Serialize(ar); });
    EXPECT_EQ(bytes.size(), 6u + 4u * 0x10001u);
    Numbers read;
    read.Serialize(Loading(bytes).ar);
    EXPECT_TRUE(valuesOf(read) == valuesOf(array));
}

TEST(ArrayArchives, OfValuesRefuseACountThatLies) {
    for (const char* bytes : {"02 00 01 00 00 00 FF FF FF", "FE FF 01 00 00 00",
                              "FF FF FF FF FF FF 01 00 00 00", "01 00", "FF FF 01 00"}) {
        Loading in(fromHex(bytes));
        EXPECT_EQ(changed([&](auto& array) {
                      EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }),
                                CArchiveException::endOfFile);
                  }),
                  (Longs{1, 2, 3}))
            << bytes;
    }
}

TEST(ArrayArchives, OfStringsKeepWhatCameBeforeTheEnd) {
    Loading in(fromHex("FF FF FF FF FF FF  01 'a'  01 'b'"));
    CStringArray array;
    EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(array.GetSize(), 2);
}

}  // namespace
