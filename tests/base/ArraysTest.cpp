// Arrays of each kind, whose operations are those of one class; and their archives.
#include <gtest/gtest.h>

#include <afxtempl.h>

#include <functional>
#include <memory>
#include <random>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

using Numbers = CArray<LONG, LONG>;
using FooArray = CTypedPtrArray<CObArray, Foo*>;
using Longs = std::vector<LONG>;

template <class ARRAY>
class Arrays : public testing::Test {
  protected:
    using Element = std::decay_t<decltype(std::declval<const ARRAY>().GetAt(0))>;

    static Element element(unsigned number) {
        static Foo objects[40];
        if constexpr (std::is_same_v<Element, CString>) {
            return CString(std::string(number, 'x').c_str());
        } else if constexpr (std::is_pointer_v<Element>) {
            return &objects[number];
        } else {
            return static_cast<Element>(number);
        }
    }
};

using ArrayTypes = testing::Types<Numbers, CStringArray, CObArray, FooArray>;
TYPED_TEST_SUITE(Arrays, ArrayTypes);

template <class Array, class Value>
void expectSame(Array& array, const std::vector<Value>& model) {
    const Array& constant = array;
    ASSERT_EQ(array.GetSize(), std::ssize(model));
    ASSERT_EQ(array.GetCount(), std::ssize(model));
    ASSERT_EQ(array.GetUpperBound(), std::ssize(model) - 1);
    ASSERT_EQ(array.IsEmpty() != FALSE, model.empty());
    for (size_t i = 0; i < model.size(); ++i) {
        const auto index = static_cast<INT_PTR>(i);
        ASSERT_EQ(array.GetAt(index), model[i]);
        ASSERT_EQ(array.ElementAt(index), model[i]);
        ASSERT_EQ(array[index], model[i]);
        ASSERT_EQ(constant[index], model[i]);
        ASSERT_EQ(constant.GetData()[i], model[i]);
    }
}

struct Operation {
    bool isAllowed;  // the others are refused, and change nothing
    std::function<void()> change;
    std::function<void()> ofModel;
};

TYPED_TEST(Arrays, AgreeWithAVectorOnRandomUse) {
    using Value = typename TestFixture::Element;
    std::mt19937 random(20150715);
    this->element(0);
    const int alive = Foo::alive;
    TypeParam array;
    std::vector<Value> model;
    for (int i = 0; i < 20000; ++i) {
        ASSERT_NO_FATAL_FAILURE(expectSame(array, model)) << i;
        const INT_PTR size = array.GetSize();
        const INT_PTR index = static_cast<INT_PTR>(random() % (model.size() + 4)) - 1;
        const INT_PTR count = static_cast<INT_PTR>(random() % 6) - 1;
        const bool isIn = index >= 0 && index < size;
        const Value fresh = this->element(random() % 40);
        // Now and then an element of the array itself, which growing moves.
        const Value& value = isIn && random() % 2 == 0 ? std::as_const(array).GetAt(index) : fresh;
        const Value kept = value;
        const auto first = model.begin() + (isIn ? index : size);
        const Operation operations[] = {
            {true, [&] { EXPECT_EQ(array.Add(value), size); }, [&] { model.push_back(kept); }},
            {index >= 0 && count > 0, [&] { array.InsertAt(index, value, count); },
             [&] {
                 model.resize(static_cast<size_t>(std::max(size, index)));
                 model.insert(model.begin() + index, static_cast<size_t>(count), kept);
             }},
            {index >= 0, [&] { array.SetAtGrow(index, value); },
             [&] {
                 model.resize(static_cast<size_t>(std::max(size, index + 1)));
                 model[static_cast<size_t>(index)] = kept;
             }},
            {index >= 0 && count >= 0 && index + count <= size,
             [&] { array.RemoveAt(index, count); }, [&] { model.erase(first, first + count); }},
            {isIn, [&] { array.RemoveAt(index); }, [&] { model.erase(first); }},
            {isIn, [&] { array.SetAt(index, value); }, [&] { *first = kept; }},
            {isIn, [&] { array.GetAt(index); }, [] {}},
            {isIn, [&] { array.ElementAt(index); }, [] {}},
            {isIn, [&] { static_cast<void>(array[index]); }, [] {}},
            {index >= 0, [&] { array.SetSize(index); },
             [&] { model.resize(static_cast<size_t>(index)); }},
            {true, [&] { array.RemoveAll(); }, [&] { model.clear(); }},
            {true,
             [&] {
                 TypeParam other;
                 other.InsertAt(1, value);
                 array.Copy(other);
             },
             [&] {
                 model = {Value(), kept};
             }}};
        const Operation& one = operations[random() % std::size(operations)];
        EXPECT_EQ(throwsA<CInvalidArgException>(one.change), !one.isAllowed) << i;
        if (one.isAllowed) one.ofModel();
    }
    EXPECT_EQ(Foo::alive, alive);
}

TYPED_TEST(Arrays, RefuseIndicesFarOutside) {
    TypeParam array;
    array.SetSize(3);
    const auto isRefused = [](auto change) { return throwsA<CInvalidArgException>(change); };
    for (const INT_PTR index : {INTPTR_MIN, INTPTR_MAX}) {
        EXPECT_TRUE(isRefused([&] { array.GetAt(index); }));
        EXPECT_TRUE(isRefused([&] { array.SetAt(index, this->element(0)); }));
        EXPECT_TRUE(isRefused([&] { array.RemoveAt(index); }));
        EXPECT_TRUE(isRefused([&] { array.RemoveAt(1, index); }));
    }
    EXPECT_EQ(array.GetSize(), 3);
}

template <class Value, class Array>
void fill(Array& array, std::initializer_list<Value> values) {
    for (const Value& value : values) array.Add(value);
}

Longs valuesOf(const Numbers& array) {
    return {array.GetData(), array.GetData() + array.GetSize()};
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

TEST(ArrayArchives, OfObjectsAreReadBack) {
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

TEST(ArrayArchives, ByPointerBeginWithTheirClass) {
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

TEST(ArrayArchives, CountsBeyondFfffAreReadBack) {
    Numbers array;
    for (LONG i = 0; i < 0x10001; ++i) array.Add(i);
    const Bytes bytes = stored([&](CArchive& ar) { array.Serialize(ar); });
    EXPECT_EQ(bytes.size(), 6u + 4u * 0x10001u);
    Numbers read;
    read.Serialize(Loading(bytes).ar);
    EXPECT_TRUE(valuesOf(read) == valuesOf(array));
}

TEST(ArrayArchives, OfValuesRefuseAFalseCount) {
    for (const char* bytes : {"02 00 01 00 00 00 FF FF FF", "FE FF 01 00 00 00",
                              "FF FF FF FF FF FF 01 00 00 00", "01 00", "FF FF 01 00"}) {
        Loading in(fromHex(bytes));
        Numbers array;
        fill(array, {1, 2, 3});
        EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }), CArchiveException::endOfFile);
        EXPECT_EQ(valuesOf(array), (Longs{1, 2, 3})) << bytes;
    }
}

TEST(ArrayArchives, OfStringsKeepTheElementsBeforeTheEnd) {
    Loading in(fromHex("FF FF FF FF FF FF  01 'a'  01 'b'"));
    CStringArray array;
    EXPECT_EQ(archiveCause([&] { array.Serialize(in.ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(array.GetSize(), 2);
}

}  // namespace
