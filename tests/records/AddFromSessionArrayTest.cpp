// The users of a lock, found by their sessions.
#include <gtest/gtest.h>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"

namespace {

class UsersOfSessions : public ::testing::Test {
  protected:
    NySeUserPtrArray m_users;
    NySeUserPtrArray m_found{QoArraySerial2::kDoNotDelete};

    void SetUp() override {
        m_users.add(makeUser(_T("carl"), 1).clone());
        m_users.add(makeUser(_T("Anna"), 2).clone());
        m_users.add(makeUser(_T("bob"), 3).clone());
    }
    // The sessions of all users found so far.
    Sessions found(const Sessions& sessions) {
        NySeSessionLockPtrArray locks;
        for (const LONG session : sessions) locks.append(makeSessionLock(session, 0).clone());
        m_found.addFromSessionArray(m_users, locks);
        return sessionsOf(m_found);
    }
    void readBack(NySeUserPtrArray& target) {
        Loading loading(stored([this](CArchive& ar) { m_found.Serialize(ar); }));
        target.Serialize(loading.ar);
    }
};

TEST_F(UsersOfSessions, AreTheVeryUsersByNameOnePerSessionLock) {
    EXPECT_EQ((Sessions{}), found({}));
    EXPECT_EQ((Sessions{3, 1}), found({1, 3}));
    EXPECT_EQ(m_users.findBySessionNumber(3), m_found.GetAt(0));
    EXPECT_EQ((Sessions{2, 3, 1}), found({2}));
    EXPECT_EQ((Sessions{2, 3, 3, 3, 1}), found({9, 3, 3, -1}));
}

// As the answer to isLockBy: the second is written as a reference.
TEST_F(UsersOfSessions, ArriveOncePerSessionLock) {
    const Sessions sent = found({3, 1, 3, 3, 2, 1});
    NySeUserPtrArray owning;
    NySeUserPtrArray view(QoArraySerial2::kDoNotDelete);
    for (NySeUserPtrArray* read : {&owning, &view}) {
        readBack(*read);
        ASSERT_EQ(sent, sessionsOf(*read));
        for (INT_PTR i = 0; i < 6; ++i) {
            EXPECT_EQ(m_found.GetAt(i)->getStrUserName(), read->GetAt(i)->getStrUserName());
        }
    }
    for (INT_PTR i = 0; i < 6; ++i) delete view.GetAt(i);
}

TEST_F(UsersOfSessions, OfOneSessionMayBeSixteenOfOne) {
    found(Sessions(16, 2));
    NySeUserPtrArray read;
    readBack(read);
    EXPECT_EQ(16, read.GetSize());
}

}  // namespace
