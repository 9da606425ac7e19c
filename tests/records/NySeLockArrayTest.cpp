#include "NyServer/records/NySeLockArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"

namespace {

NySeUser user(LONG session) {
    return makeUser(CString(), session);
}

// Adds and removes one lock for one user at a time.
class LockTable : public ::testing::Test {
  protected:
    NySeLockArray m_table;

    INT_PTR add(const CString& name, LONG session, unsigned int mode = 0) {
        return m_table.addLock(name, user(session), mode);
    }
    bool remove(const CString& name, LONG session) {
        NySeLock lock = makeLock(name);
        return m_table.removeLock(lock, user(session));
    }
    // The names in table order, each with its sessions.
    std::string shown() const {
        std::string text;
        for (INT_PTR i = 0; i < m_table.GetSize(); ++i) {
            const NySeLock& lock = *m_table.GetAt(i);
            const CString& name = lock.getStrLockName();
            for (int c = 0; c < name.GetLength(); ++c) text += static_cast<char>(name.GetAt(c));
            for (const LONG session : sessionsOf(lock.getHolders())) {
                text += " " + std::to_string(session);
            }
            text += "; ";
        }
        return text;
    }
};

TEST_F(LockTable, NewNamesAreGrantedAndGoToTheEnd) {
    EXPECT_EQ(0, add(_T("b"), 1, 0x18));
    EXPECT_EQ(1, add(_T("c"), 1, 0x01));
    EXPECT_EQ(2, add(_T("a"), 2, 0xFFFFFFFF));
    EXPECT_EQ("b 1; c 1; a 2; ", shown());
    EXPECT_EQ(0x18u, m_table.GetAt(0)->getHolders().GetAt(0)->getLockState());
}

// All modes are in the tests of one lock.
TEST_F(LockTable, ExcludingHolderRefusesAccessAndNothingElse) {
    add(_T("part"), 1, 0x18);
    EXPECT_EQ(-1, add(_T("part"), 2, 0x01));
    EXPECT_EQ("part 1; ", shown());
    EXPECT_EQ(0, add(_T("part"), 2, 0x04));
    EXPECT_EQ("part 1 2; ", shown());
}

TEST_F(LockTable, SessionMayHoldALockTwiceOrBeRefusedByItself) {
    EXPECT_EQ(0, add(_T("part"), 1, 0x01));
    EXPECT_EQ(0, add(_T("part"), 1, 0x09));
    EXPECT_EQ("part 1 1; ", shown());
    EXPECT_EQ(-1, add(_T("part"), 1, 0x01));
}

TEST_F(LockTable, HoldersAreSortedBySession) {
    for (const LONG session : {5, 1, 3}) add(_T("part"), session);
    EXPECT_EQ("part 1 3 5; ", shown());
}

TEST_F(LockTable, NamesThatDifferInLetterCaseAreOneLock) {
    add(_T("Part"), 1);
    EXPECT_EQ(0, add(_T("pART"), 2));
    EXPECT_EQ("Part 1 2; ", shown());
}

TEST_F(LockTable, ReleasingKeepsALockThatOthersHold) {
    for (const LONG session : {1, 2, 1}) add(_T("part"), session);
    EXPECT_TRUE(remove(_T("part"), 1));
    EXPECT_EQ("part 2; ", shown());
}

TEST_F(LockTable, LastReleaseRemovesTheLockAndGivesItsSpelling) {
    add(_T("other"), 1);
    add(_T("Part"), 1);
    NySeLock lock = makeLock(_T("PART"));
    auto* own = new NySeSessionLock;
    lock.getHolders().add(own);
    EXPECT_TRUE(m_table.removeLock(lock, user(1)));
    EXPECT_EQ("other 1; ", shown());
    EXPECT_EQ(CString("Part"), lock.getStrLockName());
    EXPECT_EQ(1, lock.getHolders().GetSize());
    EXPECT_EQ(own, lock.getHolders().GetAt(0));
}

TEST_F(LockTable, ReleasingWhatOneDoesNotHoldIsStillTrue) {
    add(_T("part"), 1);
    EXPECT_TRUE(remove(_T("part"), 2));
    EXPECT_EQ("part 1; ", shown());
}

TEST_F(LockTable, ReleasingAnUnknownLockIsFalse) {
    add(_T("part"), 1);
    NySeLock lock = makeLock(_T("PARTS"));
    EXPECT_FALSE(m_table.removeLock(lock, user(1)));
    EXPECT_EQ(CString("PARTS"), lock.getStrLockName());
    EXPECT_EQ("part 1; ", shown());
}

TEST_F(LockTable, TheStoredLockItselfMayBeReleased) {
    add(_T("part"), 1);
    add(_T("other"), 1);
    EXPECT_TRUE(m_table.removeLock(*m_table.GetAt(0), user(1)));
    EXPECT_EQ("other 1; ", shown());
}

TEST_F(LockTable, DeletingAUserDropsAllItsLocksAndThoseThatNobodyHolds) {
    for (const TCHAR* name : {_T("a"), _T("b"), _T("d"), _T("e")}) add(name, 1);
    for (const TCHAR* name : {_T("c"), _T("d")}) add(name, 2);
    m_table.append(new NySeLock);
    EXPECT_EQ("a 1; b 1; d 1 2; e 1; c 2; ; ", shown());
    for (const LONG session : {1, 3}) {
        m_table.deleteLockByUser(user(session));
        EXPECT_EQ("d 2; c 2; ", shown());
    }
    m_table.deleteLockByUser(user(2));
    EXPECT_EQ("", shown());
}

TEST_F(LockTable, ClassesFirstSeenLateTravelWithLongTags) {
    constexpr int kLocks = 0x8000;
    for (int i = 0; i < kLocks; ++i) m_table.append(new NySeLock);
    add(_T("a"), 1);
    add(_T("a"), 2);
    const Bytes bytes = stored([&](CArchive& ar) { m_table.Serialize(ar); });
    // Lock class 1, locks 2 to 8002, session lock class 8003.
    EXPECT_EQ(hex("FF7F 03800080 00000000 02000000"), toHex(Bytes(bytes.end() - 14, bytes.end())));
    NySeLockArray loaded;
    Loading loading(bytes);
    loaded.Serialize(loading.ar);
    ASSERT_EQ(kLocks + 1, loaded.GetSize());
    EXPECT_EQ(2, loaded.GetAt(kLocks)->getHolders().GetAt(1)->getSessionNumber());
}

// The same table in plain containers.
class LockModel {
  public:
    int addLock(const std::string& name, int session, unsigned mode) {
        for (size_t i = 0; i < m_locks.size(); ++i) {
            if (m_locks[i].name != name) continue;
            for (const auto& [holder, held] : m_locks[i].holders) {
                if ((mode & 1) != 0 && (held & 0x18) != 0) return -1;
                if ((mode & 1) == 0 && (mode & 2) != 0 && (held & 0x18) != 0) return -1;
            }
            m_locks[i].grant(session, mode);
            return static_cast<int>(i);
        }
        m_locks.push_back({name, {}});
        m_locks.back().grant(session, mode);
        return static_cast<int>(m_locks.size()) - 1;
    }
    bool removeLock(const std::string& name, int session) {
        for (size_t i = 0; i < m_locks.size(); ++i) {
            if (m_locks[i].name != name) continue;
            m_locks[i].drop(session);
            if (m_locks[i].holders.empty()) m_locks.erase(m_locks.begin() + static_cast<long>(i));
            return true;
        }
        return false;
    }
    void deleteLockByUser(int session) {
        for (auto& lock : m_locks) lock.drop(session);
        std::erase_if(m_locks, [](const auto& lock) { return lock.holders.empty(); });
    }
    std::string shown() const {
        std::string text;
        for (const auto& lock : m_locks) {
            text += lock.name;
            for (const auto& holder : lock.holders) text += " " + std::to_string(holder.first);
            text += "; ";
        }
        return text;
    }

  private:
    struct ModelLock {
        std::string name;
        std::vector<std::pair<int, unsigned>> holders;

        void grant(int session, unsigned mode) {
            const auto behind =
                std::find_if(holders.begin(), holders.end(),
                             [&](const auto& holder) { return holder.first > session; });
            holders.insert(behind, {session, mode});
        }
        void drop(int session) {
            std::erase_if(holders, [&](const auto& holder) { return holder.first == session; });
        }
    };
    std::vector<ModelLock> m_locks;
};

TEST_F(LockTable, AgreesWithAPlainModelOnRandomUse) {
    constexpr unsigned kSeed = 20150714;
    constexpr int kOperations = 100000;
    SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    LockModel model;
    int granted = 0;
    int refused = 0;
    for (int i = 0; i < kOperations; ++i) {
        const std::string name = "lock" + std::to_string(random() % 30);
        const int session = static_cast<int>(random() % 12);
        const unsigned action = random() % 20;
        if (action < 11) {
            const unsigned mode = random() % 4 == 0 ? random() % 32 : random() % 8;
            const int answer = model.addLock(name, session, mode);
            ++(answer < 0 ? refused : granted);
            ASSERT_EQ(answer, add(CString(name.c_str()), session, mode)) << i;
        } else if (action < 19) {
            ASSERT_EQ(model.removeLock(name, session), remove(CString(name.c_str()), session)) << i;
        } else {
            model.deleteLockByUser(session);
            m_table.deleteLockByUser(user(session));
        }
        if (i % 100 == 0) {
            ASSERT_EQ(model.shown(), shown()) << i;
        }
    }
    EXPECT_EQ(model.shown(), shown());
    EXPECT_GT(granted, kOperations / 10);
    EXPECT_GT(refused, kOperations / 20);
}

}  // namespace
