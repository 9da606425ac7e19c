#include "NyServer/records/NySeUserPtrArray.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"

namespace {

class UserTable : public ::testing::Test {
  protected:
    NySeUserPtrArray m_users;

    static NySeUser* make(const CString& name, LONG session) {
        NySeUser* user = new NySeUser;
        user->setStrUserName(name);
        user->setSessionNumber(session);
        return user;
    }
    std::vector<LONG> sessions() const {
        std::vector<LONG> numbers;
        for (INT_PTR i = 0; i < m_users.GetSize(); ++i) {
            numbers.push_back(m_users.GetAt(i)->getSessionNumber());
        }
        return numbers;
    }
};

TEST_F(UserTable, IsSortedByNameWithoutLetterCase) {
    m_users.add(make(_T("carl"), 1));
    m_users.add(make(_T("Bob"), 2));
    m_users.add(make(_T("anna"), 3));
    m_users.add(make(_T("BOB"), 4));
    EXPECT_EQ((std::vector<LONG>{3, 2, 4, 1}), sessions());
}

TEST_F(UserTable, FindsByNameWithoutLetterCase) {
    m_users.add(make(_T("Anna"), 1));
    m_users.add(make(_T("Bob"), 2));
    EXPECT_EQ(m_users.GetAt(1), m_users.findByUserName(_T("bOB")));
    EXPECT_EQ(nullptr, m_users.findByUserName(_T("Bo")));
    EXPECT_EQ(nullptr, NySeUserPtrArray().findByUserName(_T("")));
}

TEST_F(UserTable, FindsTheFirstOfAName) {
    m_users.append(make(_T("zoe"), 1));
    m_users.append(make(_T("Anna"), 2));
    m_users.append(make(_T("ANNA"), 3));
    EXPECT_EQ(m_users.GetAt(1), m_users.findByUserName(_T("anna")));
    EXPECT_EQ(m_users.GetAt(0), m_users.findByUserName(_T("Zoe")));
}

TEST_F(UserTable, FindsTheFirstOfASession) {
    m_users.append(make(_T("a"), 9));
    m_users.append(make(_T("b"), 4));
    m_users.append(make(_T("c"), 4));
    EXPECT_EQ(m_users.GetAt(1), m_users.findBySessionNumber(4));
    EXPECT_EQ(m_users.GetAt(0), m_users.findBySessionNumber(9));
    EXPECT_EQ(nullptr, m_users.findBySessionNumber(-1));
}

TEST_F(UserTable, TravelsWithoutSoftTypesUnderAnOlderSchema) {
    for (const LONG session : {7, 8}) {
        m_users.append(make(_T("Anna"), session));
        m_users.GetAt(m_users.GetSize() - 1)->setSoftType(3);
    }
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
    EXPECT_EQ((std::vector<LONG>{7, 8}), sessions());
    EXPECT_EQ(0, m_users.GetAt(1)->getSoftType());
    EXPECT_EQ(0u, loading.ar.BytesLeft());
    EXPECT_EQ(toHex(bytes), toHex(stored(write)));
}

// A reader that has agreed on nothing goes by the description of the class.
TEST_F(UserTable, TravelsAsAnObjectWithItsSoftTypes) {
    m_users.append(make(_T("Anna"), 7));
    m_users.GetAt(0)->setSoftType(3);
    Loading loading(stored([this](CArchive& ar) { ar.WriteObject(&m_users); }));
    const std::unique_ptr<CObject> read(loading.ar.ReadObject(RUNTIME_CLASS(NySeUserPtrArray)));
    EXPECT_EQ(3, static_cast<const NySeUserPtrArray&>(*read).GetAt(0)->getSoftType());
}

TEST_F(UserTable, SeventyThousandUsersComeBack) {
    constexpr int kUsers = 70000;
    for (int i = 0; i < kUsers; ++i) m_users.append(make(_T("u"), i));
    const Bytes bytes = stored([&](CArchive& ar) {
        ar.WriteObject(&m_users);
        ar.WriteObject(m_users.GetAt(kUsers - 1));
    });
    // Table class 1, table 2, user class 3: the last user is number 70003, too far for a short tag.
    EXPECT_EQ(hex("FF7F 73110100"), toHex(Bytes(bytes.end() - 6, bytes.end())));
    Loading loading(bytes);
    const std::unique_ptr<CObject> object(loading.ar.ReadObject(RUNTIME_CLASS(NySeUserPtrArray)));
    const auto& loaded = static_cast<const NySeUserPtrArray&>(*object);
    ASSERT_EQ(kUsers, loaded.GetSize());
    for (int i = 0; i < kUsers; ++i) ASSERT_EQ(i, loaded.GetAt(i)->getSessionNumber());
    EXPECT_EQ(loaded.GetAt(kUsers - 1), loading.ar.ReadObject(RUNTIME_CLASS(NySeUser)));
}

}  // namespace
