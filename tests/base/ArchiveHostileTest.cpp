// Archives that no writer makes: every one is refused with its own exception, and nothing of it is
// left behind.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

#include "tests/base/TestRecords.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

constexpr int kNothing = -1;

// Reads one object of class T and deletes it; gives what was thrown.
template <class T>
int causeOfReading(const Bytes& bytes) {
    return archiveCause([&] {
        Loading in(bytes);
        T* object = nullptr;
        in.ar >> object;
        delete object;
    });
}

Bytes prefixOf(const Bytes& bytes, size_t length) {
    return {bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length)};
}

// `depth` chains, each inside the one before it.
Bytes nestedChains(size_t depth) {
    return fromHex("FF FF 01 00 05 00 'Chain'") + repeated(fromHex("01 80"), depth - 1) +
           fromHex("00 00");
}

// Strings and a number, which follow the objects.
const Bytes kValues =
    fromHex("02 00  FF FE FF 02 41 00 42 00  01 'x'  FF FE FF FF 02 00 41 00 42 00  2A 00 00 00");

void readValues(CArchive& ar) {
    CStringArray strings;
    CString text;
    int number;
    strings.Serialize(ar);
    ar >> text >> number;
}

// Every kind of field: an array inside an array, objects, strings, a number.
Bytes story() {
    return fromHex(
               "03 00  FF FF DF 07 03 00 'Foo' 01 00 00 00  01 80 02 00 00 00"
               "FF FF 00 00 0B 00 'OwningArray' 02 00  01 80 03 00 00 00  00 00") +
           kValues;
}

void readStory(CArchive& ar) {
    OwningArray objects;
    objects.Serialize(ar);
    readValues(ar);
}

// Deletes objects that may refer to each other, each once.
void deleteShared(const CObArray& objects) {
    std::set<CObject*> all;
    for (INT_PTR i = 0; i < objects.GetSize(); ++i) {
        CObject* object = objects[i];
        while (object != nullptr && all.insert(object).second) {
            const Link* link = DYNAMIC_DOWNCAST(Link, object);
            object = link != nullptr ? link->m_other : nullptr;
        }
    }
    for (CObject* object : all) delete object;
}

int causeOfReadingShared(const Bytes& bytes) {
    Loading in(bytes);
    CObArray objects;
    const int cause = archiveCause([&] {
        objects.Serialize(in.ar);
        readValues(in.ar);
    });
    deleteShared(objects);
    return cause;
}

class ArchiveHostile : public testing::Test {
  protected:
    void SetUp() override { m_aliveBefore = alive(); }
    void TearDown() override { EXPECT_EQ(alive(), m_aliveBefore) << "objects left behind"; }

  private:
    static int alive() { return Foo::alive + Chain::alive; }
    int m_aliveBefore = 0;
};

using Action = std::function<void(CArchive&)>;

TEST_F(ArchiveHostile, WritingIntoALoadingArchive) {
    Loading in(fromHex("01 02 03 04"));
    Foo foo;
    const Action actions[] = {
        [](CArchive& ar) { ar << 1; },
        [](CArchive& ar) { ar << CString(_T("a")); },
        [](CArchive& ar) { ar.Write("a", 1); },
        [](CArchive& ar) { ar.Write("a", 0); },
        [](CArchive& ar) { ar.WriteCount(1); },
        [](CArchive& ar) { ar.WriteClass(RUNTIME_CLASS(Foo)); },
        [&](CArchive& ar) { ar << &foo; },
        [](CArchive& ar) { ar << static_cast<CObject*>(nullptr); },
    };
    for (const Action& action : actions) {
        EXPECT_EQ(archiveCause([&] { action(in.ar); }), CArchiveException::readOnly);
    }
    EXPECT_EQ(in.ar.BytesLeft(), 4u);
}

TEST_F(ArchiveHostile, ReadingFromAStoringArchive) {
    CMemFile file;
    CArchive out(&file, CArchive::store);
    int number = 5;
    CString text(_T("before"));
    CObject* object = nullptr;
    const Action actions[] = {
        [&](CArchive& ar) { ar >> number; },  [&](CArchive& ar) { ar >> text; },
        [&](CArchive& ar) { ar >> object; },  [&](CArchive& ar) { ar.Read(&number, 4); },
        [](CArchive& ar) { ar.ReadCount(); }, [](CArchive& ar) { ar.ReadClass(); },
    };
    for (const Action& action : actions) {
        EXPECT_EQ(archiveCause([&] { action(out); }), CArchiveException::writeOnly);
    }
    EXPECT_EQ(number, 5);
    EXPECT_EQ(text, _T("before"));
}

TEST_F(ArchiveHostile, FailedObjectsLeaveTheTarget) {
    for (const char* bytes : {"", "FF FF DF 07 03 00 'Foo' 01", "05 00", "FF FF 00 00 01 00 'X'"}) {
        Foo target;
        Foo* foo = &target;
        CObject* object = &target;
        EXPECT_NE(archiveCause([&] { Loading(fromHex(bytes)).ar >> foo; }), kNothing) << bytes;
        EXPECT_NE(archiveCause([&] { Loading(fromHex(bytes)).ar >> object; }), kNothing) << bytes;
        EXPECT_EQ(foo, &target);
        EXPECT_EQ(object, &target);
    }
}

TEST_F(ArchiveHostile, UnusedNumbers) {
    for (const char* bytes : {"01 00", "FE 7F", "01 80", "00 80", "FE FF", "FF 7F 01 00 00 00",
                              "FF 7F 00 00 00 80", "FF 7F FF FF FF 7F", "FF 7F FF FF FF FF"}) {
        EXPECT_EQ(causeOfReading<CObject>(fromHex(bytes)), CArchiveException::badIndex) << bytes;
    }
}

TEST_F(ArchiveHostile, ClassTagsThatNameObjectsAndTheReverse) {
    const Bytes one = fromHex("01 00 FF FF DF 07 03 00 'Foo' 01 00 00 00");
    for (const char* tag : {"02 80", "01 00", "03 00", "03 80"}) {
        Bytes bytes = one + fromHex(tag);
        bytes[0] = 2;
        const auto read = [&] {
            OwningArray array;
            array.Serialize(Loading(bytes).ar);
        };
        EXPECT_EQ(archiveCause(read), CArchiveException::badIndex) << tag;
    }
}

TEST_F(ArchiveHostile, ObjectWhereAClassIsRequested) {
    EXPECT_EQ(archiveCause([] { Loading(fromHex("00 00")).ar.ReadClass(); }),
              CArchiveException::badIndex);
    EXPECT_EQ(archiveCause([] { Loading(fromHex("05 00")).ar.ReadClass(); }),
              CArchiveException::badIndex);
}

TEST_F(ArchiveHostile, ImpossibleNameLengths) {
    const Bytes rest = repeated(fromHex("'x'"), 70000);
    for (const char* length : {"00 00", "40 00", "41 00", "00 01", "FF FF"}) {
        EXPECT_EQ(causeOfReading<CObject>(fromHex("FF FF 00 00") + fromHex(length) + rest),
                  CArchiveException::badIndex)
            << length;
    }
    EXPECT_EQ(causeOfReading<CObject>(fromHex("FF FF 00 00 3F 00") + rest),
              CArchiveException::badClass);
}

TEST_F(ArchiveHostile, UnknownAndUnsuitableClasses) {
    for (const char* bytes :
         {"FF FF 00 00 03 00 'Fox'", "FF FF 00 00 04 00 'Foo' 00", "FF FF 00 00 07 00 'CObject'",
          "FF FF FF FF 08 00 'CMemFile'", "FF FF FF FF 0D 00 'CreatableOnly'"}) {
        EXPECT_EQ(causeOfReading<CObject>(fromHex(bytes)), CArchiveException::badClass) << bytes;
    }
    EXPECT_EQ(causeOfReading<Foo>(fromHex("FF FF 07 00 05 00 'Fixed' 01 00")),
              CArchiveException::badClass);
}

TEST_F(ArchiveHostile, ClassesAndObjectsOfAnotherKindThanRequested) {
    for (const char* second :
         {"FF FF DF 07 03 00 'Foo' 01 00 00 00 00", "01 80 02 00 00 00 00", "02 00"}) {
        Loading in(fromHex("FF FF DF 07 03 00 'Foo' 01 00 00 00") + fromHex(second));
        Foo* foo = nullptr;
        in.ar >> foo;
        const std::unique_ptr<Foo> owner(foo);
        SubFoo* sub = nullptr;
        EXPECT_EQ(archiveCause([&] { in.ar >> sub; }), CArchiveException::badClass) << second;
    }
}

TEST_F(ArchiveHostile, ObjectsThatCannotBeCreated) {
    EXPECT_TRUE(throwsA<CMemoryException>(
        [] { causeOfReading<CObject>(fromHex("FF FF 01 00 0A 00 'Unmakeable'")); }));
}

TEST_F(ArchiveHostile, FailedObjectCannotBeReferredTo) {
    Loading in(fromHex("FF FF 09 00 04 00 'Link'  FF FF DF 07 03 00 'Fox'  02 00"));
    Link* link = nullptr;
    EXPECT_EQ(archiveCause([&] { in.ar >> link; }), CArchiveException::badClass);
    EXPECT_EQ(archiveCause([&] { in.ar >> link; }), CArchiveException::badIndex);
}

TEST_F(ArchiveHostile, ObjectsInsideAFailedOneCannotBeReferredTo) {
    Loading in(
        fromHex("FF FF 00 00 0B 00 'OwningArray' 02 00  FF FF DF 07 03 00 'Foo' 01 00 00 00"
                "63 00  04 00  03 80 05 00 00 00"));
    CObject* object = nullptr;
    EXPECT_EQ(archiveCause([&] { in.ar >> object; }), CArchiveException::badIndex);
    EXPECT_EQ(Foo::alive, 0);
    EXPECT_EQ(archiveCause([&] { in.ar >> object; }), CArchiveException::badIndex);
    in.ar >> object;
    const std::unique_ptr<CObject> foo(object);
    EXPECT_EQ(static_cast<Foo*>(object)->m_value, 5);
}

TEST_F(ArchiveHostile, ExceptionsHaveTheFilesName) {
    int number;
    CString text;
    CObject* object;
    const std::pair<UINT, Action> actions[] = {
        {CArchive::load, [&](CArchive& ar) { ar >> number; }},
        {CArchive::load, [&](CArchive& ar) { ar >> text; }},
        {CArchive::load, [&](CArchive& ar) { ar >> object; }},
        {CArchive::load, [](CArchive& ar) { ar << 1; }},
        {CArchive::store, [&](CArchive& ar) { ar >> number; }}};
    for (const auto& [mode, action] : actions) {
        BYTE bytes[2] = {5, 0};
        CMemFile file(bytes, 2);
        file.SetFilePath(_T("queue.bin"));
        CArchive ar(&file, mode);
        try {
            action(ar);
            ADD_FAILURE() << "nothing thrown";
        } catch (CArchiveException* thrown) {
            EXPECT_EQ(thrown->m_strFileName, _T("queue.bin"));
            thrown->Delete();
        }
    }
}

TEST_F(ArchiveHostile, TruncatedAtEveryLength) {
    const Bytes whole = story();
    EXPECT_EQ(archiveCause([&] { readStory(Loading(whole).ar); }), kNothing);
    for (size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(archiveCause([&] { readStory(Loading(prefixOf(whole, length)).ar); }),
                  CArchiveException::endOfFile)
            << length;
    }
}

TEST_F(ArchiveHostile, EachHeaderByteFlipped) {
    const Bytes chain = fromHex("FF FF 01 00 05 00 'Chain' 00 00");
    ASSERT_EQ(causeOfReading<Chain>(chain), kNothing);
    const int expected[] = {
        CArchiveException::badIndex,   // 00 FF: a class nobody has
        CArchiveException::badIndex,   // FF 00: an object nobody has
        CArchiveException::badSchema,  // schema
        CArchiveException::badSchema,
        CArchiveException::badIndex,  // name length
        CArchiveException::badIndex,
        CArchiveException::badClass,  // name
        CArchiveException::badClass,  CArchiveException::badClass,
        CArchiveException::badClass,  CArchiveException::badClass,
    };
    for (size_t i = 0; i < std::size(expected); ++i) {
        Bytes flipped = chain;
        flipped[i] ^= 0xFF;
        EXPECT_EQ(causeOfReading<Chain>(flipped), expected[i]) << i;
    }
}

// Whatever one byte becomes, reading ends with an archive exception or with objects.
TEST_F(ArchiveHostile, EachByteReplacedByEachOther) {
    const Bytes whole =
        fromHex(
            "05 00  FF FF DF 07 03 00 'Foo' 01 00 00 00  01 80 02 00 00 00"
            "FF FF 03 00 06 00 'SubFoo' 03 00 00 00 00  FF FF 09 00 04 00 'Link' 01 80 04 00 00 00"
            "02 00") +
        kValues;
    for (size_t i = 0; i < whole.size(); ++i) {
        for (int value = 0; value < 256; ++value) {
            Bytes changed = whole;
            changed[i] = static_cast<BYTE>(value);
            const int cause = causeOfReadingShared(changed);
            EXPECT_TRUE(cause == kNothing || (cause >= CArchiveException::endOfFile &&
                                              cause <= CArchiveException::badSchema))
                << i << " " << value;
        }
    }
}

TEST_F(ArchiveHostile, EachCountAndLengthOverflowed) {
    const auto cause = [](const char* bytes) {
        return archiveCause([&] { readStory(Loading(fromHex(bytes)).ar); });
    };
    const int endOfFile = CArchiveException::endOfFile;
    EXPECT_EQ(cause("FE FF  FF FF DF 07 03 00 'Foo' 01 00 00 00"), endOfFile);
    EXPECT_EQ(cause("FF FF FF FF FF FF  FF FF DF 07 03 00 'Foo' 01 00 00 00"), endOfFile);
    EXPECT_EQ(cause("00 00  FF FF FF FF FF FF  00 00 00"), endOfFile);
    EXPECT_EQ(cause("00 00  00 00  FE 'ab'"), endOfFile);
    EXPECT_EQ(cause("00 00  00 00  FF FE FF FE 41 00"), endOfFile);
    EXPECT_EQ(cause("00 00  00 00  FF FE FF FF FE FF 41 00"), endOfFile);
    EXPECT_EQ(cause("00 00  00 00  FF FE FF FF FF FF FF FF FF 7F 41 00"), endOfFile);
    EXPECT_EQ(cause("00 00  00 00  FF FE FF FF FF FF FF FF FF FF 41 00"),
              CArchiveException::badIndex);
}

TEST_F(ArchiveHostile, DeepNesting) {
    EXPECT_EQ(causeOfReading<Chain>(nestedChains(1)), kNothing);
    EXPECT_EQ(causeOfReading<Chain>(nestedChains(100)), kNothing);
    EXPECT_EQ(causeOfReading<Chain>(nestedChains(101)), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading<Chain>(nestedChains(200)), CArchiveException::badIndex);
    EXPECT_EQ(causeOfReading<Chain>(nestedChains(1000000)), CArchiveException::badIndex);
}

TEST_F(ArchiveHostile, DepthIsThatOfNestingNotOfNumber) {
    Loading in(nestedChains(100) + repeated(fromHex("01 80 00 00"), 300));
    for (int i = 0; i < 301; ++i) {
        Chain* chain = nullptr;
        in.ar >> chain;
        delete chain;
    }
    EXPECT_EQ(in.ar.BytesLeft(), 0u);
}

TEST_F(ArchiveHostile, DepthIsRestoredAfterARefusal) {
    Loading in(nestedChains(101) + fromHex("01 80 00 00"));
    Chain* chain = nullptr;
    EXPECT_EQ(archiveCause([&] { in.ar >> chain; }), CArchiveException::badIndex);
    WORD rest;
    in.ar >> rest >> chain;
    delete chain;
}

}  // namespace
