#include "NyServer/records/NySeUser.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Golden.h"
#include "tests/support/Thrown.h"

namespace {

constexpr char kNoStrings[] = "FFFEFF00 FFFEFF00 FFFEFF00";

NySeUser named(const CString& name, LONG session = 0) {
    NySeUser user;
    user.setStrUserName(name);
    user.setSessionNumber(session);
    return user;
}

NySeUser distinct() {
    NySeUser user = named(_T("user"), 2);
    user.setStrHostName(_T("host"));
    user.setStrComputerName(_T("computer"));
    user.setPort(1);
    user.setSchema(3);
    user.setSoftType(4);
    return user;
}

std::string storedUnder(UINT schema, NySeUser user) {
    return toHex(stored([&](CArchive& ar) {
        ar.SetObjectSchema(schema);
        user.Serialize(ar);
    }));
}

TEST(NySeUser, StartsWithoutSessionAndPort) {
    const NySeUser user;
    EXPECT_EQ(CString(), user.getStrHostName());
    EXPECT_EQ(CString(), user.getStrUserName());
    EXPECT_EQ(CString(), user.getStrComputerName());
    EXPECT_EQ(-1, user.getPort());
    EXPECT_EQ(-1, user.getSessionNumber());
    EXPECT_EQ(0, user.getSchema());
    EXPECT_EQ(0, user.getSoftType());
}

TEST(NySeUser, KeepsAndCopiesEveryField) {
    const NySeUser copy(distinct());
    EXPECT_EQ(CString("host"), copy.getStrHostName());
    EXPECT_EQ(CString("user"), copy.getStrUserName());
    EXPECT_EQ(CString("computer"), copy.getStrComputerName());
    EXPECT_EQ(1, copy.getPort());
    EXPECT_EQ(2, copy.getSessionNumber());
    EXPECT_EQ(3, copy.getSchema());
    EXPECT_EQ(4, copy.getSoftType());
}

TEST(NySeUser, KeyOneComparesNamesWithoutLetterCase) {
    EXPECT_EQ(QoSort::equal, named(_T("ANNA"), 1).vCompareTo(named(_T("anna"), 2), 1));
    EXPECT_EQ(QoSort::before, named(_T("anna")).vCompareTo(named(_T("Bob")), 1));
    EXPECT_EQ(QoSort::after, named(_T("bob")).vCompareTo(named(_T("Anna")), 1));
    EXPECT_EQ(QoSort::before, named(_T("")).vCompareTo(named(_T("a")), 1));
}

TEST(NySeUser, NamesFoldToLowerCaseWhenTheyAreCompared) {
    EXPECT_EQ(QoSort::before, named(_T("a_b")).vCompareTo(named(_T("aZb")), 1));
    EXPECT_NE(QoSort::equal, named(_T("\u00E4")).vCompareTo(named(_T("\u00C4")), 1));
}

TEST(NySeUser, KeyTwoComparesSessionNumbers) {
    EXPECT_EQ(QoSort::equal, named(_T("a"), 5).vCompareTo(named(_T("b"), 5), 2));
    EXPECT_EQ(QoSort::before, named(_T("b"), -5).vCompareTo(named(_T("a"), 5), 2));
    EXPECT_EQ(QoSort::after, named(_T("a"), 6).vCompareTo(named(_T("b"), 5), 2));
}

TEST(NySeUser, NumbersCompareByTheSignOfTheir32BitDifference) {
    EXPECT_EQ(QoSort::after, named(_T(""), INT32_MIN).vCompareTo(named(_T(""), INT32_MAX), 2));
    EXPECT_EQ(QoSort::before, named(_T(""), INT32_MAX).vCompareTo(named(_T(""), INT32_MIN), 2));
    EXPECT_EQ(QoSort::before, named(_T(""), INT32_MIN).vCompareTo(named(_T(""), 0), 2));
}

TEST(NySeUser, KeyThreeComparesNamesAndThenSessionNumbers) {
    EXPECT_EQ(QoSort::before, named(_T("ANNA"), 1).vCompareTo(named(_T("anna"), 2), 3));
    EXPECT_EQ(QoSort::after, named(_T("anna"), 3).vCompareTo(named(_T("Anna"), 2), 3));
    EXPECT_EQ(QoSort::equal, named(_T("anna"), 2).vCompareTo(named(_T("Anna"), 2), 3));
    EXPECT_EQ(QoSort::before, named(_T("anna"), 9).vCompareTo(named(_T("bob"), 1), 3));
    EXPECT_EQ(QoSort::after, named(_T("bob"), 1).vCompareTo(named(_T("anna"), 9), 3));
}

TEST(NySeUser, TravelsWithThePortFirst) {
    const char* fields =
        "01000000 FFFEFF04'h'00'o'00's'00't'00 FFFEFF04'u'00's'00'e'00'r'00"
        "FFFEFF08'c'00'o'00'm'00'p'00'u'00't'00'e'00'r'00 02000000 03000000 04000000";
    EXPECT_EQ(hex(fields), storedUnder(static_cast<UINT>(-1), distinct()));
}

TEST(NySeUser, DefaultUserTravelsAsItsDefaults) {
    EXPECT_EQ(hex(std::string("FFFFFFFF") + kNoStrings + "FFFFFFFF 00000000 00000000"),
              toHex(stored([](CArchive& ar) { NySeUser().Serialize(ar); })));
}

TEST(NySeUser, StoresTheSoftTypeFromSchema2015On) {
    const std::string six = std::string("FFFFFFFF") + kNoStrings + "FFFFFFFF 00000000";
    for (const UINT schema : {0u, 1u, 2014u, 0x80000000u, 0x80000000u | 2014u}) {
        EXPECT_EQ(hex(six), storedUnder(schema, NySeUser())) << schema;
    }
    for (const UINT schema : {2015u, 2016u, 0x80000000u | 2015u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(hex(six + "00000000"), storedUnder(schema, NySeUser())) << schema;
    }
}

TEST(NySeUser, OlderSchemaLeavesTheSoftTypeAsItIs) {
    Loading loading(golden("user-plain-schema-2014").bytes);
    loading.ar.SetObjectSchema(2014);
    NySeUser user;
    user.setSoftType(77);
    user.Serialize(loading.ar);
    EXPECT_EQ(77, user.getSoftType());
    EXPECT_EQ(40123, user.getPort());
    EXPECT_EQ(2015, user.getSchema());
    EXPECT_EQ(0u, loading.ar.BytesLeft());
}

TEST(NySeUser, StoredSchemaOfAnObjectDecidesWhatIsRead) {
    Loading loading(fromHex(std::string("FFFF DE07 0800 'NySeUser' 01000000") + kNoStrings +
                            "02000000 03000000 AAAA"));
    const std::unique_ptr<CObject> user(loading.ar.ReadObject(RUNTIME_CLASS(NySeUser)));
    EXPECT_EQ(3, static_cast<NySeUser&>(*user).getSchema());
    EXPECT_EQ(2u, loading.ar.BytesLeft());
}

TEST(NySeUser, SchemaStaysInForceForTheNextRecord) {
    const Bytes bytes = stored([](CArchive& ar) {
        ar.SetObjectSchema(2014);
        NySeUser().Serialize(ar);
        NySeUser().Serialize(ar);
    });
    EXPECT_EQ(2u * 24u, bytes.size());
}

TEST(NySeUser, ArchivesOfTheOtherDirectionAreRefused) {
    CMemFile file;
    file.SetFilePath(_T("users"));
    CArchive storing(&file, CArchive::store);
    LONG number = 0;
    EXPECT_EQ(CArchiveException::writeOnly, archiveCause([&] { storing >> number; }));
    CArchive loading(&file, CArchive::load);
    try {
        loading << number;
        FAIL() << "written into a loading archive";
    } catch (CArchiveException* error) {
        EXPECT_EQ(CArchiveException::readOnly, error->m_cause);
        EXPECT_EQ(CString("users"), error->m_strFileName);
        error->Delete();
    }
}

}  // namespace
