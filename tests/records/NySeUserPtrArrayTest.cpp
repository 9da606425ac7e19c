#include "NyServer/records/NySeUserPtrArray.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"

namespace {

class UserTable : public ::testing::Test {
  protected:
    NySeUserPtrArray m_users;

    void append(const CString& name, LONG session) {
        m_users.append(makeUser(name, session).clone());
    }
    void appendWithSoftType(LONG session) {
        append(_T("Anna"), session);
        m_users.GetAt(m_users.GetSize() - 1)->setSoftType(3);
    }
};

TEST_F(UserTable, IsSortedByNameWithoutLetterCase) {
    m_users.add(makeUser(_T("carl"), 1).clone());
    m_users.add(makeUser(_T("Bob"), 2).clone());
    m_users.add(makeUser(_T("anna"), 3).clone());
    m_users.add(makeUser(_T("BOB"), 4).clone());
    EXPECT_EQ((Sessions{3, 2, 4, 1}), sessionsOf(m_users));
}

TEST_F(UserTable, FindsTheFirstOfASession) {
    append(_T("a"), 9);
    append(_T("b"), 4);
    append(_T("c"), 4);
    EXPECT_EQ(m_users.GetAt(1), m_users.findBySessionNumber(4));
    EXPECT_EQ(m_users.GetAt(0), m_users.findBySessionNumber(9));
    EXPECT_EQ(nullptr, m_users.findBySessionNumber(-1));
}

TEST_F(UserTable, IsStoredWithoutSoftTypesUnderAnOlderSchema) {
    for (const LONG session : {7, 8}) appendWithSoftType(session);
    const auto write = [this](CArchive& ar) {
        ar.SetObjectSchema(VERSIONABLE_SCHEMA | 2014);
        m_users.Serialize(ar);
    };
    const Bytes bytes = stored(write);
    const std::string name = "FFFEFF04 41006E006E006100 FFFEFF00 ";
    EXPECT_EQ(hex("0200 FFFF DF07 0800 'NySeUser' FFFFFFFF FFFEFF00" + name + "07000000 00000000" +
                  "0180 FFFFFFFF FFFEFF00" + name + "08000000 00000000"),
              toHex(bytes));
    Loading loading(bytes);
    loading.ar.SetObjectSchema(VERSIONABLE_SCHEMA | 2014);
    m_users.Serialize(loading.ar);
    EXPECT_EQ((Sessions{7, 8}), sessionsOf(m_users));
    EXPECT_EQ(0, m_users.GetAt(1)->getSoftType());
    EXPECT_EQ(0u, loading.ar.BytesLeft());
    EXPECT_EQ(toHex(bytes), toHex(stored(write)));
}

// A reader that has agreed on nothing goes by the description of the class.
TEST_F(UserTable, IsStoredAsAnObjectWithItsSoftTypes) {
    appendWithSoftType(7);
    Loading loading(stored([this](CArchive& ar) { ar.WriteObject(&m_users); }));
    const std::unique_ptr<CObject> read(loading.ar.ReadObject(RUNTIME_CLASS(NySeUserPtrArray)));
    EXPECT_EQ(3, static_cast<const NySeUserPtrArray&>(*read).GetAt(0)->getSoftType());
}

}  // namespace
