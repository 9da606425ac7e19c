// What the lock table finds after its locks were changed behind its back.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUser.h"
#include "tests/support/ArchiveBytes.h"

namespace {

constexpr int kNames = 60;

CString nameOf(int number) {
    const std::string digits = (number % 2 == 0 ? "Lock" : "lOCK") + std::to_string(number / 2);
    return CString(digits.c_str());
}

std::unique_ptr<NySeLock> lockNamed(const CString& name) {
    auto lock = std::make_unique<NySeLock>();
    lock->setStrLockName(name);
    return lock;
}

// The definition: the first in index order.
INT_PTR plainSearch(const NySeLockArray& table, const CString& name) {
    for (INT_PTR i = 0; i < table.GetSize(); ++i) {
        if (table.GetAt(i)->getStrLockName().CompareNoCase(name) == 0) return i;
    }
    return -1;
}

class LockIndex : public ::testing::Test {
  protected:
    LockIndex() {
        for (int i = 0; i < 40; ++i) m_table.append(lockNamed(nameOf(3 * i)).release());
        lookAround(m_table);
    }

    // Often enough for the table to have made its index.
    static void lookAround(const NySeLockArray& table) {
        for (int i = 0; i < 4; ++i) table.lookForLockName(_T("nothing"));
    }
    static void expectRightAnswers(const NySeLockArray& table) {
        for (int round = 0; round < 3; ++round) {
            for (int i = 0; i < 2 * kNames; ++i) {
                const CString name = nameOf(i);
                ASSERT_EQ(table.lookForLockName(name), plainSearch(table, name))
                    << "name " << i << ", round " << round;
            }
        }
    }

    NySeLockArray m_table;
};

TEST_F(LockIndex, KnowsTheTableAsItWasMade) {
    expectRightAnswers(m_table);
}

TEST_F(LockIndex, KnowsARenamedLock) {
    m_table.GetAt(5)->setStrLockName(_T("renamed"));
    EXPECT_EQ(m_table.lookForLockName(_T("RENAMED")), 5);
    expectRightAnswers(m_table);
}

TEST_F(LockIndex, KnowsALockRenamedAfterMakingItsIndexAnew) {
    m_table.GetAt(5)->setStrLockName(_T("renamed"));
    lookAround(m_table);
    m_table.GetAt(5)->setStrLockName(_T("again"));
    EXPECT_EQ(m_table.lookForLockName(_T("renamed")), -1);
    EXPECT_EQ(m_table.lookForLockName(_T("again")), 5);
}

TEST_F(LockIndex, KnowsALockThatTookOverAnothersName) {
    *m_table.GetAt(5) = *lockNamed(_T("copied"));
    EXPECT_EQ(m_table.lookForLockName(_T("copied")), 5);
}

TEST_F(LockIndex, KnowsALockThatWasReadFromAnArchive) {
    const Bytes bytes = stored([](CArchive& ar) { lockNamed(_T("read"))->Serialize(ar); });
    m_table.GetAt(7)->Serialize(Loading(bytes).ar);
    EXPECT_EQ(m_table.lookForLockName(_T("read")), 7);
}

TEST_F(LockIndex, KnowsALockThatCameInPlaceOfAnother) {
    delete m_table.GetAt(3);
    m_table.SetAt(3, lockNamed(_T("placed")).release());
    EXPECT_EQ(m_table.lookForLockName(_T("placed")), 3);
    lookAround(m_table);
    EXPECT_EQ(m_table.lookForLockName(_T("placed")), 3);
}

TEST_F(LockIndex, KnowsALockAtTheAddressOfOneThatIsGone) {
    for (int i = 0; i < 10; ++i) {
        m_table.RemoveAt(4);
        m_table.InsertAt(4, lockNamed(nameOf(i)).release());
        expectRightAnswers(m_table);
    }
}

TEST_F(LockIndex, FindsTheFirstOfEqualNames) {
    m_table.append(lockNamed(_T("twice")).release());
    m_table.append(lockNamed(_T("TWICE")).release());
    lookAround(m_table);
    EXPECT_EQ(m_table.lookForLockName(_T("Twice")), 40);
}

TEST_F(LockIndex, ComparesUpToAZeroCharacter) {
    m_table.append(lockNamed(CString(_T("head\0tail"), 9)).release());
    lookAround(m_table);
    EXPECT_EQ(m_table.lookForLockName(_T("head")), 40);
    EXPECT_EQ(m_table.lookForLockName(CString(_T("head\0other"), 10)), 40);
}

// Is equal to every name.
class Joker : public NySeLock {
  public:
    QoSort::CompareResult vCompareTo(const QoObject2&, short) const override {
        return QoSort::equal;
    }
};

TEST_F(LockIndex, LeavesALockThatComparesInItsOwnWayToItself) {
    m_table.InsertAt(2, new Joker);
    lookAround(m_table);
    EXPECT_EQ(m_table.lookForLockName(_T("nothing")), 2);
}

TEST_F(LockIndex, IsNotCopiedWithTheTable) {
    NySeLockArray copy(m_table);
    m_table.GetAt(0)->setStrLockName(_T("original"));
    expectRightAnswers(copy);
    copy = m_table;
    expectRightAnswers(copy);
    EXPECT_EQ(copy.lookForLockName(_T("original")), 0);
}

// The same locks in two tables, of which one owns them.
TEST_F(LockIndex, SeesWhatAnotherTableDoesWithSharedLocks) {
    NySeLockArray shared(QoArraySerial2::kDoNotDelete);
    shared.addFrom(m_table);
    lookAround(shared);
    NySeUser user;
    for (int i = 0; i < 10; ++i) {
        shared.RemoveAt(6);
        NySeLock lock;
        lock.setStrLockName(m_table.GetAt(6)->getStrLockName());
        EXPECT_TRUE(m_table.removeLock(lock, user));
        const CString name = nameOf(10 * kNames + 2 * i);
        m_table.InsertAt(6, lockNamed(name).release());
        shared.InsertAt(6, m_table.GetAt(6));
        EXPECT_EQ(shared.lookForLockName(name), 6);
        lookAround(shared);
        EXPECT_EQ(shared.lookForLockName(name), 6);
        EXPECT_EQ(m_table.lookForLockName(name), 6);
    }
}

class RandomLockIndex : public LockIndex {
  protected:
    void step() {
        const CString name = nameOf(static_cast<int>(m_random() % kNames));
        const INT_PTR place = static_cast<INT_PTR>(m_random() % 20);
        NySeUser user;
        user.setSessionNumber(static_cast<LONG>(m_random() % 3));
        switch (m_random() % 8) {
            case 0:
                m_table.addLock(name, user, 0);
                break;
            case 1:
                remove(name, user);
                break;
            case 2:
                m_table.GetAt(place)->setStrLockName(name);
                break;
            case 3:
                m_table.InsertAt(place, lockNamed(name).release());
                break;
            case 4:
                m_table.add(lockNamed(name).release());
                break;
            case 5:
                m_table.deleteLockByUser(user);
                break;
            case 6:
                m_table.RemoveAt(place);
                break;
            default:
                lookAround(m_table);
        }
        while (m_table.GetSize() < 20) m_table.append(lockNamed(name).release());
    }
    void remove(const CString& name, const NySeUser& user) {
        NySeLock lock;
        lock.setStrLockName(name);
        const INT_PTR expected = plainSearch(m_table, name);
        EXPECT_EQ(m_table.removeLock(lock, user), expected >= 0);
    }

    static constexpr unsigned int kSeed = 411;
    std::mt19937 m_random{kSeed};
};

TEST_F(RandomLockIndex, AnswersLikeAPlainSearch) {
    for (int i = 0; i < 3000; ++i) {
        step();
        const CString name = nameOf(static_cast<int>(m_random() % kNames));
        ASSERT_EQ(m_table.lookForLockName(name), plainSearch(m_table, name))
            << "step " << i << ", seed " << kSeed;
    }
}

}  // namespace
