#include "QoArraySerial2.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/base_qo/CountedFixture.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

using namespace std::string_literals;

const std::string kNewCounted = "FFFF 0700 0700 'Counted'";
const std::string kCounted = kNewCounted + "09000000 01000000";
const std::string kNewStranger = "FFFF 0700 0800 'Stranger'";

class QoArraySerial2Test : public CountedFixture {
  protected:
    CountedTable m_table;

    Bytes bytes() {
        return stored([&](CArchive& ar) { m_table.Serialize(ar); });
    }
    // Reads the bytes into m_table; the cause of the exception, -1 for none.
    int load(const Bytes& bytes) {
        Loading loading(bytes);
        return archiveCause([&] { m_table.Serialize(loading.ar); });
    }
    int load(const std::string& text) { return load(fromHex(text)); }
    void expectRefused(int cause, const Bytes& bytes) {
        EXPECT_EQ(cause, load(bytes)) << toHex(bytes);
        EXPECT_EQ(0, m_table.GetSize()) << toHex(bytes);
        EXPECT_EQ(0, Counted::alive) << toHex(bytes);
        EXPECT_EQ(0, Stranger::alive) << toHex(bytes);
    }
    void expectRefused(int cause, const std::string& text) { expectRefused(cause, fromHex(text)); }
    void append(const Numbers& numbers) {
        for (const int number : numbers) m_table.append(new Counted(number));
    }
};

TEST_F(QoArraySerial2Test, StoresACountAndTaggedRecords) {
    EXPECT_EQ("00 00", toHex(bytes()));
    append({1, -1});
    EXPECT_EQ(hex("0200" + kNewCounted + "01000000 00000000 0180 FFFFFFFF 00000000"),
              toHex(bytes()));
}

TEST_F(QoArraySerial2Test, LoadsInArchiveOrderWithoutSorting) {
    EXPECT_EQ(-1, load("0200" + kCounted + "0180 02000000 03000000"));
    EXPECT_EQ((Pairs{{9, 1}, {2, 3}}), pairsOf(m_table));
}

TEST_F(QoArraySerial2Test, LoadsRecordsOfAKindOfTheElementClass) {
    EXPECT_EQ(-1, load("0100 FFFF 0800 0A00 'SubCounted' 09000000 01000000"));
    EXPECT_TRUE(m_table.at(0)->IsKindOf(RUNTIME_CLASS(SubCounted)));
}

TEST_F(QoArraySerial2Test, SetsTheOlderSchemaForEachRecordAndRestoresTheCallers) {
    const struct {
        UINT callers;
        UINT given;
    } rows[] = {{0xFFFFFFFF, 0x3412},
                {VERSIONABLE_SCHEMA | 0x3413, 0x3412},
                {0x3413, 0x3412},
                {VERSIONABLE_SCHEMA | 0x3411, VERSIONABLE_SCHEMA | 0x3411},
                {77, 0x3412}};
    for (const auto& row : rows) {
        Loading loading(
            fromHex("0200 FFFF 1234 0700 'Counted' 09000000 01000000 0180 02000000 03000000"));
        loading.ar.SetObjectSchema(row.callers);
        m_table.Serialize(loading.ar);
        EXPECT_EQ(row.given, m_table.at(0)->m_schema);
        EXPECT_EQ(row.given, m_table.at(1)->m_schema);
        EXPECT_EQ(row.callers, loading.ar.GetObjectSchema());
    }
}

TEST_F(QoArraySerial2Test, LoadingReplacesTheContents) {
    append({1, 2, 3});
    EXPECT_EQ(-1, load("0100" + kCounted));
    EXPECT_EQ((Numbers{9}), numbersOf(m_table));
    EXPECT_EQ(3, Counted::deleted);
}

TEST_F(QoArraySerial2Test, LoadingAViewLeavesOldAndNewRecordsToTheCaller) {
    Counted old(1);
    m_table.setDeleteObject(false);
    m_table.append(&old);
    EXPECT_EQ(-1, load("0100" + kCounted));
    const std::unique_ptr<Counted> loaded(m_table.at(0));
    m_table.RemoveAll();
    EXPECT_EQ(9, loaded->m_number);
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArraySerial2Test, FailedLoadingDeletesWhatItReadAndWhatTheTableOwned) {
    append({1, 2});
    expectRefused(CArchiveException::endOfFile, "0200" + kCounted + "0180 02000000");
    EXPECT_EQ(4, Counted::deleted);
    EXPECT_TRUE(m_table.getDeleteObject());
}

TEST_F(QoArraySerial2Test, FailedLoadingOfAViewDeletesOnlyWhatItRead) {
    Counted old(1);
    m_table.setDeleteObject(false);
    m_table.append(&old);
    EXPECT_EQ(CArchiveException::endOfFile, load("0200" + kCounted + "0180 02000000"));
    EXPECT_EQ(1, Counted::alive);
    EXPECT_EQ(2, Counted::deleted);
    EXPECT_EQ(0, m_table.GetSize());
    EXPECT_FALSE(m_table.getDeleteObject());
}

TEST_F(QoArraySerial2Test, FailedLoadingLeavesNothingThatLaterBytesCouldReferTo) {
    Loading loading(fromHex("FFFF 0700 0C00 'CountedTable' 0200" + kCounted + "0000 0400"));
    EXPECT_EQ(CArchiveException::badClass,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(CountedTable)); }));
    EXPECT_EQ(CArchiveException::badIndex,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(Counted)); }));
}

TEST_F(QoArraySerial2Test, RefusesWhatIsNotOfTheElementClass) {
    for (const std::string& text :
         {"0100 0000"s, "0200" + kCounted + "0000", "0100" + kNewStranger,
          "0200" + kCounted + kNewStranger, "0100 FFFF 0000 0800 'CObArray' 0000"s,
          "0100 FFFF 0700 0C00 'CountedTable' 0000"s, "0100 FFFF 0700 0900 'QoObject2'"s,
          "0100 FFFF 0700 0600 'Nobody'"s}) {
        expectRefused(CArchiveException::badClass, text);
    }
}

TEST_F(QoArraySerial2Test, LoadsAClonePerReferenceToItsOwnRecords) {
    EXPECT_EQ(-1, load("0400" + kCounted + "0200 0180 08000000 02000000 FF7F 02000000"));
    EXPECT_EQ((Pairs{{9, 1}, {9, 1}, {8, 2}, {9, 1}}), pairsOf(m_table));
    EXPECT_EQ(4, Counted::alive);
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArraySerial2Test, LoadsClonesThatBelongToTheCallerOfAView) {
    m_table.setDeleteObject(false);
    EXPECT_EQ(-1, load("0200" + kCounted + "0200"));
    ASSERT_EQ(2, m_table.GetSize());
    EXPECT_NE(m_table.at(0), m_table.at(1));
    delete m_table.at(0);
    delete m_table.at(1);
    EXPECT_EQ(0, Counted::alive);
}

TEST_F(QoArraySerial2Test, FailedLoadingDeletesItsClones) {
    for (const bool owns : {true, false}) {
        m_table.setDeleteObject(owns);
        expectRefused(CArchiveException::endOfFile, "0300" + kCounted + "0200");
    }
}

TEST_F(QoArraySerial2Test, RefusesARecordWhoseCloneIsNotWhole) {
    // Its clone is a Counted.
    expectRefused(CArchiveException::badIndex,
                  "0200 FFFF 0800 0A00 'SubCounted' 09000000 01000000 0200");
    Counted::clonesLeft = 0;
    EXPECT_TRUE(throwsA<CMemoryException>([&] { load("0200" + kCounted + "0200"); }));
    EXPECT_EQ(0, Counted::alive);
}

TEST_F(QoArraySerial2Test, RefusesReferencesBeyondASmallMultipleOfTheBytes) {
    int cause = -1;
    int references = 0;
    for (std::string text = "0001" + kCounted;
         cause != CArchiveException::badIndex && references < 200; text += "0200") {
        cause = load(text);
        ++references;
    }
    EXPECT_GE(references, 16);
    EXPECT_LE(references, 100);
    // The more is there, the more of it may be repeated.
    EXPECT_EQ(-1,
              load(fromHex("0008" + kCounted) + repeated(fromHex("0180 09000000 01000000"), 1023) +
                   repeated(fromHex("0200"), 1024)));
}

TEST_F(QoArraySerial2Test, RefusesARecordThatWasReadOutsideTheTable) {
    Loading loading(fromHex(kCounted + "0100 0200"));
    const std::unique_ptr<CObject> first(loading.ar.ReadObject(RUNTIME_CLASS(Counted)));
    EXPECT_EQ(CArchiveException::badIndex, archiveCause([&] { m_table.Serialize(loading.ar); }));
    EXPECT_EQ(0, m_table.GetSize());
}

TEST_F(QoArraySerial2Test, RefusesTheTableItselfAsItsElement) {
    Loading loading(fromHex("FFFF 0700 0C00 'CountedTable' 0100 0200"));
    EXPECT_EQ(CArchiveException::badIndex,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(CountedTable)); }));
}

TEST_F(QoArraySerial2Test, RefusesTagsOfNothing) {
    for (const std::string& text :
         {"0100 0100"s, "0100 0080"s, "0100 0180"s, "0200" + kCounted + "0280",
          "0200" + kCounted + "0300", "0100 FF7F FFFFFFFF"s, "0100 FFFF 0700 0000"s,
          "0100 FFFF 0700 4000"s}) {
        expectRefused(CArchiveException::badIndex, text);
    }
}

TEST_F(QoArraySerial2Test, RefusesAnArchiveCutAnywhereAndACountBeyondTheData) {
    Bytes cut = fromHex("0200" + kCounted + "0180 02000000 03000000");
    while (!cut.empty()) {
        cut.pop_back();
        expectRefused(CArchiveException::endOfFile, cut);
    }
    for (const char* count : {"FEFF", "FFFF 00000001", "FFFF FFFFFFFF"}) {
        expectRefused(CArchiveException::endOfFile, count + kCounted);
    }
}

TEST_F(QoArraySerial2Test, WithoutAnElementClassHoldsAnyRecordButNothingElse) {
    QoArraySerial2 any;
    any.Serialize(Loading(fromHex("0200" + kNewStranger + kCounted)).ar);
    EXPECT_EQ(2, any.GetSize());
    Loading array(fromHex("0100 FFFF 0000 0800 'CObArray' 0000"));
    EXPECT_EQ(CArchiveException::badClass, archiveCause([&] { any.Serialize(array.ar); }));
}

TEST_F(QoArraySerial2Test, SeventyThousandRecordsAreReadBack) {
    constexpr int kRecords = 70000;
    for (int i = 0; i < kRecords; ++i) m_table.append(new Counted(i, -i));
    const Bytes all = bytes();
    // A long count; the one class, number 1, keeps its short tag.
    EXPECT_EQ(hex("FFFF 70110100 FFFF 0700"), toHex(Bytes(all.begin(), all.begin() + 10)));
    EXPECT_EQ(6u + 13u + kRecords * 8u + (kRecords - 1) * 2u, all.size());
    const Pairs pairs = pairsOf(m_table);
    EXPECT_EQ(-1, load(all));
    EXPECT_EQ(pairs, pairsOf(m_table));
}

TEST_F(QoArraySerial2Test, ClassesNumberedLateAreStoredWithLongTags) {
    constexpr int kRecords = 0x7FFE;  // with their class, numbers 1 to 7FFF are used
    append(Numbers(kRecords));
    m_table.append(new SubCounted);
    m_table.append(new SubCounted);
    const Bytes all = bytes();
    EXPECT_EQ(hex("FF7F 00800080 00000000 00000000"), toHex(Bytes(all.end() - 14, all.end())));
    EXPECT_EQ(-1, load(all));
    EXPECT_TRUE(m_table.at(kRecords + 1)->IsKindOf(RUNTIME_CLASS(SubCounted)));
}

}  // namespace
