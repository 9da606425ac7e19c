#include <gtest/gtest.h>

#include <afxtempl.h>

#include <memory>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

using Numbers = CArray<LONG, LONG>;
using FooArray = CTypedPtrArray<CObArray, Foo*>;

template <class Action>
bool refuses(Action action) {
    return throwsA<CInvalidArgException>(action);
}

std::vector<LONG> valuesOf(const Numbers& array) {
    return {array.GetData(), array.GetData() + array.GetSize()};
}

void fill(Numbers& array, std::initializer_list<LONG> values) {
    for (const LONG value : values) array.Add(value);
}

std::string objectHex(CObject& object) {
    return toHex(stored([&](CArchive& ar) { object.Serialize(ar); }));
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

TEST(Arrays, InsertAtMovesTheRestUp) {
    Numbers array;
    fill(array, {1, 2, 3});
    array.InsertAt(1, 9);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, 9, 2, 3}));
    array.InsertAt(4, 8, 2);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, 9, 2, 3, 8, 8}));
}

TEST(Arrays, InsertAtPastTheEndFillsTheGap) {
    CObArray array;
    Foo foo;
    array.InsertAt(2, &foo);
    ASSERT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_EQ(array[2], &foo);
}

TEST(Arrays, SetAtGrowReplacesOrGrows) {
    CStringArray array;
    array.SetAtGrow(2, _T("c"));
    array.SetAtGrow(0, _T("a"));
    ASSERT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], _T("a"));
    EXPECT_EQ(array[1], _T(""));
    EXPECT_EQ(array[2], _T("c"));
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

TEST(Arrays, CopyReplacesTheElements) {
    Numbers source;
    fill(source, {1, 2, 3});
    Numbers target;
    fill(target, {9});
    target.Copy(source);
    source.SetAt(0, 7);
    EXPECT_EQ(valuesOf(target), (std::vector<LONG>{1, 2, 3}));
}

TEST(Arrays, SetSizeAddsEmptyElementsOrCuts) {
    Numbers array;
    fill(array, {1, 2, 3});
    array.SetSize(5);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, 2, 3, 0, 0}));
    array.SetSize(1);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1}));
}

TEST(Arrays, RemoveAtMovesTheRestDown) {
    Numbers array;
    fill(array, {1, 2, 3, 4, 5});
    array.RemoveAt(1, 2);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, 4, 5}));
    array.RemoveAt(0);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{4, 5}));
    array.RemoveAt(1, 0);
    array.RemoveAt(2, 0);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{4, 5}));
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

TEST(Arrays, IndicesOutsideAreRefused) {
    CObArray array;
    array.SetSize(2);
    for (const INT_PTR index : {INT_PTR{-1}, INT_PTR{2}, INTPTR_MIN, INTPTR_MAX}) {
        EXPECT_TRUE(refuses([&] { array.GetAt(index); })) << index;
        EXPECT_TRUE(refuses([&] { array.ElementAt(index); })) << index;
        EXPECT_TRUE(refuses([&] { array[index] = nullptr; })) << index;
        EXPECT_TRUE(refuses([&] { array.SetAt(index, nullptr); })) << index;
    }
    EXPECT_EQ(array.GetSize(), 2);
}

TEST(Arrays, NegativeGrowthIsRefused) {
    Numbers array;
    EXPECT_TRUE(refuses([&] { array.SetSize(-1); }));
    EXPECT_TRUE(refuses([&] { array.SetAtGrow(-1, 0); }));
    EXPECT_TRUE(refuses([&] { array.InsertAt(-1, 0); }));
    EXPECT_TRUE(refuses([&] { array.InsertAt(0, 0, 0); }));
    EXPECT_TRUE(refuses([&] { array.InsertAt(0, 0, -1); }));
    EXPECT_EQ(array.GetSize(), 0);
}

TEST(Arrays, RemovalOutsideIsRefused) {
    Numbers array;
    fill(array, {1, 2, 3});
    EXPECT_TRUE(refuses([&] { array.RemoveAt(-1); }));
    EXPECT_TRUE(refuses([&] { array.RemoveAt(0, -1); }));
    EXPECT_TRUE(refuses([&] { array.RemoveAt(3); }));
    EXPECT_TRUE(refuses([&] { array.RemoveAt(2, 2); }));
    EXPECT_TRUE(refuses([&] { array.RemoveAt(4, 0); }));
    EXPECT_TRUE(refuses([&] { array.RemoveAt(1, INTPTR_MAX); }));
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, 2, 3}));
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
    EXPECT_TRUE(refuses([&] { array.GetAt(4); }));
}

TEST(ArrayArchives, OfObjectsAreACountAndObjects) {
    CObArray array;
    EXPECT_EQ(objectHex(array), "00 00");
    Foo one(1), two(2);
    array.Add(&one);
    array.Add(&two);
    EXPECT_EQ(objectHex(array),
              hex("02 00 FF FF DF 07 03 00 46 6F 6F 01 00 00 00 01 80 02 00 00 00"));
    array.SetAt(1, &one);
    EXPECT_EQ(objectHex(array), hex("02 00 FF FF DF 07 03 00 46 6F 6F 01 00 00 00 02 00"));
    array.RemoveAll();
    array.Add(nullptr);
    EXPECT_EQ(objectHex(array), "01 00 00 00");
}

TEST(ArrayArchives, ByPointerBearTheirClassFirst) {
    FooArray array;
    Foo one(1), two(2);
    array.Add(&one);
    array.Add(&two);
    const auto write = [&](CArchive& ar) { ar << &array; };
    EXPECT_EQ(toHex(stored(write)),
              hex("FF FF 00 00 08 00 43 4F 62 41 72 72 61 79  02 00"
                  "FF FF DF 07 03 00 46 6F 6F 01 00 00 00  03 80 02 00 00 00"));
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

TEST(ArrayArchives, ByPointerComeBack) {
    Loading in(fromHex("FF FF 00 00 08 00 'CObArray' 01 00 FF FF DF 07 03 00 'Foo' 07 00 00 00"));
    CObArray* array = nullptr;
    in.ar >> array;
    const std::unique_ptr<CObArray> owner(array);
    ASSERT_EQ(array->GetSize(), 1);
    const std::unique_ptr<CObject> element(array->GetAt(0));
    EXPECT_EQ(static_cast<Foo*>(element.get())->m_value, 7);
}

TEST(ArrayArchives, OfStringsAreACountAndStrings) {
    CStringArray array;
    EXPECT_EQ(objectHex(array), "00 00");
    array.Add(_T(""));
    array.Add(_T("Ab"));
    EXPECT_EQ(objectHex(array), hex("02 00 FF FE FF 00 FF FE FF 02 41 00 62 00"));
    const auto write = [](CArchive& ar) { ar.WriteClass(RUNTIME_CLASS(CStringArray)); };
    EXPECT_EQ(toHex(stored(write)), hex("FF FF 00 00 0C 00 'CStringArray'"));
}

TEST(ArrayArchives, OfStringsComeBack) {
    Loading in(fromHex("03 00 FF FE FF 00  FF FE FF 02 41 00 62 00  01 'x'"));
    CStringArray array;
    array.Add(_T("old"));
    array.Serialize(in.ar);
    ASSERT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], _T(""));
    EXPECT_EQ(array[1], _T("Ab"));
    EXPECT_EQ(array[2], _T("x"));
}

TEST(ArrayArchives, OfStringsByPointerComeBack) {
    Loading in(fromHex("FF FF 00 00 0C 00 'CStringArray' 01 00 01 'x'"));
    CStringArray* array = nullptr;
    in.ar >> array;
    const std::unique_ptr<CStringArray> owner(array);
    ASSERT_EQ(array->GetSize(), 1);
    EXPECT_EQ(array->GetAt(0), _T("x"));
}

TEST(ArrayArchives, OfValuesAreACountAndTheirBytes) {
    Numbers array;
    EXPECT_EQ(objectHex(array), "00 00");
    fill(array, {1, -1});
    EXPECT_EQ(objectHex(array), hex("02 00 01 00 00 00 FF FF FF FF"));
    CArray<BYTE, BYTE> bytes;
    bytes.Add(7);
    EXPECT_EQ(objectHex(bytes), "01 00 07");
}

TEST(ArrayArchives, OfValuesComeBack) {
    Loading in(fromHex("02 00 01 00 00 00 FF FF FF FF  05 06"));
    Numbers array;
    fill(array, {7, 8, 9});
    array.Serialize(in.ar);
    EXPECT_EQ(valuesOf(array), (std::vector<LONG>{1, -1}));
    EXPECT_EQ(in.ar.BytesLeft(), 2u);
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
        Numbers array;
        fill(array, {7});
        EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }), CArchiveException::endOfFile)
            << bytes;
        EXPECT_EQ(valuesOf(array), (std::vector<LONG>{7})) << bytes;
    }
}

TEST(ArrayArchives, OfStringsKeepWhatCameBeforeTheEnd) {
    Loading in(fromHex("FF FF FF FF FF FF  01 'a'  01 'b'"));
    CStringArray array;
    EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(array.GetSize(), 2);
}

}  // namespace
