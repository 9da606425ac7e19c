#include "QoArraySerial2.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/base_qo/CountedFixture.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

constexpr char kNewCounted[] = "FFFF 0700 0700 'Counted'";
constexpr char kNewStranger[] = "FFFF 0700 0800 'Stranger'";

class QoArraySerial2Test : public CountedFixture {
  protected:
    CountedTable m_table;

    // Reads the hex text into m_table; the cause of the exception, -1 for none.
    int load(const std::string& text) {
        Loading loading(fromHex(text));
        return archiveCause([&] { m_table.Serialize(loading.ar); });
    }
    void expectRefused(int cause, const std::string& text) {
        EXPECT_EQ(cause, load(text)) << text;
        EXPECT_EQ(0, m_table.GetSize()) << text;
        EXPECT_EQ(0, Counted::alive) << text;
        EXPECT_EQ(0, Stranger::alive) << text;
    }
};

TEST_F(QoArraySerial2Test, StoresACountAndTaggedRecords) {
    appendAll(m_table, {1, -1});
    const Bytes bytes = stored([&](CArchive& ar) { m_table.Serialize(ar); });
    EXPECT_EQ(hex("0200 FFFF 0700 0700 'Counted' 01000000 00000000 0180 FFFFFFFF 00000000"),
              toHex(bytes));
}

TEST_F(QoArraySerial2Test, StoresAnEmptyTableAsACount) {
    EXPECT_EQ(hex("0000"), toHex(stored([&](CArchive& ar) { m_table.Serialize(ar); })));
}

TEST_F(QoArraySerial2Test, LoadsInArchiveOrderWithoutSorting) {
    EXPECT_EQ(-1,
              load(std::string("0200") + kNewCounted + "09000000 01000000 0180 02000000 03000000"));
    EXPECT_EQ((Pairs{{9, 1}, {2, 3}}), pairsOf(m_table));
}

TEST_F(QoArraySerial2Test, LoadsRecordsOfAKindOfTheElementClass) {
    EXPECT_EQ(-1, load("0100 FFFF 0800 0A00 'SubCounted' 09000000 01000000"));
    EXPECT_TRUE(m_table.at(0)->IsKindOf(RUNTIME_CLASS(SubCounted)));
}

TEST_F(QoArraySerial2Test, GivesEachRecordTheOlderSchemaAndTheCallerItsOwn) {
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
    appendAll(m_table, {1, 2, 3});
    EXPECT_EQ(-1, load(std::string("0100") + kNewCounted + "09000000 01000000"));
    EXPECT_EQ((Numbers{9}), numbersOf(m_table));
    EXPECT_EQ(3, Counted::deleted);
}

TEST_F(QoArraySerial2Test, LoadingAViewLeavesOldAndNewRecordsToTheCaller) {
    Counted old(1);
    m_table.setDeleteObject(false);
    m_table.append(&old);
    EXPECT_EQ(-1, load(std::string("0100") + kNewCounted + "09000000 01000000"));
    const std::unique_ptr<Counted> loaded(m_table.at(0));
    m_table.RemoveAll();
    EXPECT_EQ(9, loaded->m_number);
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArraySerial2Test, FailedLoadingDeletesWhatItReadAndWhatTheTableOwned) {
    appendAll(m_table, {1, 2});
    expectRefused(CArchiveException::endOfFile,
                  std::string("0200") + kNewCounted + "09000000 01000000 0180 02000000");
    EXPECT_EQ(4, Counted::deleted);
    EXPECT_TRUE(m_table.getDeleteObject());
}

TEST_F(QoArraySerial2Test, FailedLoadingOfAViewDeletesOnlyWhatItRead) {
    {
        const Counted old(1);
        m_table.setDeleteObject(false);
        m_table.append(const_cast<Counted*>(&old));
        EXPECT_EQ(CArchiveException::endOfFile,
                  load(std::string("0200") + kNewCounted + "09000000 01000000 0180 02000000"));
        EXPECT_EQ(1, Counted::alive);
        EXPECT_EQ(2, Counted::deleted);
    }
    EXPECT_EQ(0, m_table.GetSize());
    EXPECT_FALSE(m_table.getDeleteObject());
}

TEST_F(QoArraySerial2Test, FailedLoadingLeavesNothingThatLaterBytesCouldReferTo) {
    Loading loading(
        fromHex("FFFF 0700 0C00 'CountedTable' 0200 FFFF 0700 0700 'Counted' 09000000"
                "01000000 0000 0400"));
    EXPECT_EQ(CArchiveException::badClass,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(CountedTable)); }));
    EXPECT_EQ(CArchiveException::badIndex,
              archiveCause([&] { loading.ar.ReadObject(RUNTIME_CLASS(Counted)); }));
}

TEST_F(QoArraySerial2Test, RefusesWhatIsNotOfTheElementClass) {
    const std::string counted = std::string(kNewCounted) + "09000000 01000000";
    expectRefused(CArchiveException::badClass, "0100 0000");
    expectRefused(CArchiveException::badClass, "0200" + counted + "0000");
    expectRefused(CArchiveException::badClass, std::string("0100") + kNewStranger);
    expectRefused(CArchiveException::badClass, "0200" + counted + kNewStranger);
    expectRefused(CArchiveException::badClass, "0100 FFFF 0000 0800 'CObArray' 0000");
    expectRefused(CArchiveException::badClass, "0100 FFFF 0700 0C00 'CountedTable' 0000");
    expectRefused(CArchiveException::badClass, "0100 FFFF 0700 0900 'QoObject2'");
    expectRefused(CArchiveException::badClass, "0100 FFFF 0700 0600 'Nobody'");
}

TEST_F(QoArraySerial2Test, LoadsAClonePerReferenceToItsOwnRecords) {
    const std::string counted = std::string(kNewCounted) + "09000000 01000000";
    EXPECT_EQ(-1, load("0400" + counted + "0200 0180 08000000 02000000 FF7F 02000000"));
    EXPECT_EQ((Pairs{{9, 1}, {9, 1}, {8, 2}, {9, 1}}), pairsOf(m_table));
    EXPECT_EQ(4, Counted::alive);
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArraySerial2Test, LoadsClonesThatBelongToTheCallerOfAView) {
    m_table.setDeleteObject(false);
    EXPECT_EQ(-1, load("0200" + std::string(kNewCounted) + "09000000 01000000 0200"));
    ASSERT_EQ(2, m_table.GetSize());
    EXPECT_NE(m_table.at(0), m_table.at(1));
    delete m_table.at(0);
    delete m_table.at(1);
    EXPECT_EQ(0, Counted::alive);
}

TEST_F(QoArraySerial2Test, FailedLoadingDeletesItsClones) {
    const std::string counted = std::string(kNewCounted) + "09000000 01000000";
    expectRefused(CArchiveException::endOfFile, "0300" + counted + "0200");
    m_table.setDeleteObject(false);
    expectRefused(CArchiveException::endOfFile, "0300" + counted + "0200");
}

TEST_F(QoArraySerial2Test, RefusesARecordWhoseCloneIsNotWhole) {
    // Its clone is a Counted.
    expectRefused(CArchiveException::badIndex,
                  "0200 FFFF 0800 0A00 'SubCounted' 09000000 01000000 0200");
    Counted::clonesLeft = 0;
    EXPECT_TRUE(throwsA<CMemoryException>([&] {
        Loading loading(fromHex("0200" + std::string(kNewCounted) + "09000000 01000000 0200"));
        m_table.Serialize(loading.ar);
    }));
    EXPECT_EQ(0, Counted::alive);
}

TEST_F(QoArraySerial2Test, RefusesReferencesBeyondASmallMultipleOfTheBytes) {
    const std::string counted = "0001" + std::string(kNewCounted) + "09000000 01000000";
    int cause = -1;
    int references = 0;
    for (std::string text = counted; cause != CArchiveException::badIndex && references < 200;
         text += "0200") {
        cause = load(text);
        ++references;
    }
    EXPECT_GE(references, 16);
    EXPECT_LE(references, 100);
    // The more is there, the more of it may be repeated.
    std::string all = "0008" + std::string(kNewCounted) + "09000000 01000000";
    for (int i = 1; i < 1024; ++i) all += "0180 09000000 01000000";
    for (int i = 0; i < 1024; ++i) all += "0200";
    EXPECT_EQ(-1, load(all));
}

TEST_F(QoArraySerial2Test, RefusesARecordThatTheArchiveGaveSomebodyElse) {
    Loading loading(fromHex(std::string(kNewCounted) + "09000000 01000000" + "0100 0200"));
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
    const std::string counted = std::string(kNewCounted) + "09000000 01000000";
    expectRefused(CArchiveException::badIndex, "0100 0100");
    expectRefused(CArchiveException::badIndex, "0100 0080");
    expectRefused(CArchiveException::badIndex, "0100 0180");
    expectRefused(CArchiveException::badIndex, "0200" + counted + "0280");
    expectRefused(CArchiveException::badIndex, "0200" + counted + "0300");
    expectRefused(CArchiveException::badIndex, "0100 FF7F FFFFFFFF");
    expectRefused(CArchiveException::badIndex, "0100 FFFF 0700 0000");
    expectRefused(CArchiveException::badIndex, "0100 FFFF 0700 4000");
}

TEST_F(QoArraySerial2Test, RefusesAnArchiveCutAnywhere) {
    const Bytes whole =
        fromHex(std::string("0200") + kNewCounted + "09000000 01000000 0180 02000000 03000000");
    for (size_t length = 0; length < whole.size(); ++length) {
        expectRefused(CArchiveException::endOfFile,
                      toHex(Bytes(whole.begin(), whole.begin() + static_cast<long>(length))));
    }
}

TEST_F(QoArraySerial2Test, RefusesACountBeyondTheData) {
    const std::string counted = std::string(kNewCounted) + "09000000 01000000";
    expectRefused(CArchiveException::endOfFile, "FEFF" + counted);
    expectRefused(CArchiveException::endOfFile, "FFFF 00000001" + counted);
    expectRefused(CArchiveException::endOfFile, "FFFF FFFFFFFF" + counted);
}

TEST_F(QoArraySerial2Test, WithoutAnElementClassHoldsAnyRecordButNothingElse) {
    QoArraySerial2 any;
    Loading mixed(fromHex(std::string("0200") + kNewStranger + kNewCounted + "09000000 01000000"));
    any.Serialize(mixed.ar);
    EXPECT_EQ(2, any.GetSize());
    Loading array(fromHex("0100 FFFF 0000 0800 'CObArray' 0000"));
    EXPECT_EQ(CArchiveException::badClass, archiveCause([&] { any.Serialize(array.ar); }));
}

TEST_F(QoArraySerial2Test, SeventyThousandRecordsComeBack) {
    constexpr int kRecords = 70000;
    for (int i = 0; i < kRecords; ++i) m_table.append(new Counted(i, -i));
    const Bytes bytes = stored([&](CArchive& ar) { m_table.Serialize(ar); });
    // A long count; the one class, number 1, keeps its short tag.
    EXPECT_EQ(hex("FFFF 70110100 FFFF 0700"), toHex(Bytes(bytes.begin(), bytes.begin() + 10)));
    EXPECT_EQ(6u + 13u + kRecords * 8u + (kRecords - 1) * 2u, bytes.size());
    CountedTable loaded;
    Loading loading(bytes);
    loaded.Serialize(loading.ar);
    EXPECT_EQ(pairsOf(m_table), pairsOf(loaded));
}

TEST_F(QoArraySerial2Test, ClassesNumberedLateTravelWithLongTags) {
    constexpr int kRecords = 0x7FFE;  // with their class, numbers 1 to 7FFF are used
    for (int i = 0; i < kRecords; ++i) m_table.append(new Counted(i));
    m_table.append(new SubCounted);
    m_table.append(new SubCounted);
    const Bytes bytes = stored([&](CArchive& ar) { m_table.Serialize(ar); });
    EXPECT_EQ(hex("FF7F 00800080 00000000 00000000"), toHex(Bytes(bytes.end() - 14, bytes.end())));
    Loading loading(bytes);
    m_table.Serialize(loading.ar);
    EXPECT_TRUE(m_table.at(kRecords + 1)->IsKindOf(RUNTIME_CLASS(SubCounted)));
}

TEST_F(QoArraySerial2Test, ArchivesOfTheOtherDirectionAreRefused) {
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    EXPECT_EQ(CArchiveException::writeOnly, archiveCause([&] { storing.ReadCount(); }));
    Loading loading(fromHex("0000"));
    EXPECT_EQ(CArchiveException::readOnly, archiveCause([&] { loading.ar.WriteCount(0); }));
}

}  // namespace
