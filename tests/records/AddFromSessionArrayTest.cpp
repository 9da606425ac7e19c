// The users of a lock, found by their sessions.
#include <gtest/gtest.h>

#include "NyServer/records/NySeSessionLockPtrArray.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"

namespace {

class UsersOfSessions : public ::testing::Test {
  protected:
    NySeUserPtrArray m_users;
    NySeSessionLockPtrArray m_sessions;
    NySeUserPtrArray m_found{QoArraySerial2::kDoNotDelete};

    void SetUp() override {
        addUser(_T("carl"), 1);
        addUser(_T("Anna"), 2);
        addUser(_T("bob"), 3);
    }
    void addUser(const CString& name, LONG session) {
        auto* user = new NySeUser;
        user->setStrUserName(name);
        user->setSessionNumber(session);
        m_users.add(user);
    }
    void addSessions(const std::vector<LONG>& numbers) {
        for (const LONG number : numbers) {
            auto* session = new NySeSessionLock;
            session->setSessionNumber(number);
            m_sessions.append(session);
        }
    }
    std::vector<LONG> found() {
        m_found.addFromSessionArray(m_users, m_sessions);
        std::vector<LONG> numbers;
        for (INT_PTR i = 0; i < m_found.GetSize(); ++i) {
            numbers.push_back(m_found.GetAt(i)->getSessionNumber());
        }
        return numbers;
    }
};

TEST_F(UsersOfSessions, AreSortedByName) {
    addSessions({1, 3, 2});
    EXPECT_EQ((std::vector<LONG>{2, 3, 1}), found());
}

TEST_F(UsersOfSessions, AreTheVeryUsers) {
    addSessions({3});
    found();
    EXPECT_EQ(m_users.findBySessionNumber(3), m_found.GetAt(0));
}

TEST_F(UsersOfSessions, LackThoseWithoutAUser) {
    addSessions({9, 3, -1});
    EXPECT_EQ((std::vector<LONG>{3}), found());
}

TEST_F(UsersOfSessions, AreNoneForNoSessions) {
    EXPECT_EQ((std::vector<LONG>{}), found());
}

TEST_F(UsersOfSessions, AppearOncePerSessionLock) {
    addSessions({3, 3});
    EXPECT_EQ((std::vector<LONG>{3, 3}), found());
}

// As the answer to isLockBy: the second is written as a reference.
TEST_F(UsersOfSessions, ArriveOncePerSessionLock) {
    addSessions({3, 1, 3, 3, 2, 1});
    found();
    NySeUserPtrArray owning;
    NySeUserPtrArray view(QoArraySerial2::kDoNotDelete);
    for (NySeUserPtrArray* read : {&owning, &view}) {
        Loading loading(stored([this](CArchive& ar) { m_found.Serialize(ar); }));
        read->Serialize(loading.ar);
        ASSERT_EQ(6, read->GetSize());
        for (INT_PTR i = 0; i < 6; ++i) {
            EXPECT_EQ(m_found.GetAt(i)->getSessionNumber(), read->GetAt(i)->getSessionNumber());
            EXPECT_EQ(m_found.GetAt(i)->getStrUserName(), read->GetAt(i)->getStrUserName());
        }
    }
    for (INT_PTR i = 0; i < 6; ++i) delete view.GetAt(i);
}

TEST_F(UsersOfSessions, OfOneSessionMayBeSixteenOfOne) {
    for (int i = 0; i < 16; ++i) addSessions({2});
    found();
    Loading loading(stored([this](CArchive& ar) { m_found.Serialize(ar); }));
    NySeUserPtrArray read;
    read.Serialize(loading.ar);
    EXPECT_EQ(16, read.GetSize());
}

TEST_F(UsersOfSessions, JoinThoseAlreadyThere) {
    addSessions({1});
    found();
    m_sessions.RemoveAll();
    addSessions({2});
    EXPECT_EQ((std::vector<LONG>{2, 1}), found());
}

}  // namespace
