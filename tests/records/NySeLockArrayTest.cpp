#include "NyServer/records/NySeLockArray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
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

std::string narrow(const CString& text) {
    return {text.GetString(), text.GetString() + text.GetLength()};
}

// Adds and removes one lock for one user at a time.
class LockTable : public ::testing::Test {
  protected:
    NySeLockArray m_table;

    INT_PTR add(const CString& name, LONG session, unsigned int mode = 0) {
        return m_table.addLock(name, user(session), mode);
    }
    // The names in table order, each with its sessions and their modes.
    std::string shown() const {
        std::string text;
        for (INT_PTR i = 0; i < m_table.GetSize(); ++i) {
            const NySeSessionLockPtrArray& holders = m_table.GetAt(i)->getHolders();
            text += narrow(m_table.GetAt(i)->getStrLockName());
            for (INT_PTR k = 0; k < holders.GetSize(); ++k) {
                text += " " + std::to_string(holders.GetAt(k)->getSessionNumber()) + ":" +
                        std::to_string(holders.GetAt(k)->getLockState());
            }
            text += "; ";
        }
        return text;
    }
};

TEST_F(LockTable, ReleasingKeepsTheHoldersOfTheGivenLock) {
    add(_T("Part"), 1);
    NySeLock lock = makeLock(_T("PART"));
    auto* own = new NySeSessionLock;
    lock.getHolders().add(own);
    EXPECT_TRUE(m_table.removeLock(lock, user(1)));
    EXPECT_EQ("", shown());
    EXPECT_EQ(CString("Part"), lock.getStrLockName());
    EXPECT_EQ(1, lock.getHolders().GetSize());
    EXPECT_EQ(own, lock.getHolders().GetAt(0));
}

TEST_F(LockTable, DeletingAUserRemovesLocksThatHadNoHolder) {
    add(_T("a"), 2);
    m_table.append(new NySeLock);
    m_table.deleteLockByUser(user(1));
    EXPECT_EQ("a 2:0; ", shown());
}

TEST_F(LockTable, ClassesFirstWrittenLateAreStoredWithLongTags) {
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
        auto lock = find(name);
        if (lock == m_locks.end()) lock = m_locks.insert(lock, {name, {}});
        for (const auto& [holder, held] : lock->holders) {
            if ((mode & 3) != 0 && (held & 0x18) != 0) return -1;
        }
        lock->holders.emplace(session, mode);
        return static_cast<int>(lock - m_locks.begin());
    }
    // Whether the lock is there; its spelling replaces `name` then.
    bool removeLock(std::string& name, int session) {
        const auto lock = find(name);
        if (lock == m_locks.end()) return false;
        name = lock->name;
        lock->holders.erase(session);
        if (lock->holders.empty()) m_locks.erase(lock);
        return true;
    }
    void deleteLockByUser(int session) {
        for (auto& lock : m_locks) lock.holders.erase(session);
        std::erase_if(m_locks, [](const auto& lock) { return lock.holders.empty(); });
    }
    std::string shown() const {
        std::string text;
        for (const auto& lock : m_locks) {
            text += lock.name;
            for (const auto& [session, mode] : lock.holders) {
                text += " " + std::to_string(session) + ":" + std::to_string(mode);
            }
            text += "; ";
        }
        return text;
    }

  private:
    struct ModelLock {
        std::string name;
        std::multimap<int, unsigned> holders;  // by session, equal ones in the order of grants
    };
    std::vector<ModelLock>::iterator find(const std::string& name) {
        return std::find_if(m_locks.begin(), m_locks.end(), [&](const ModelLock& lock) {
            return CString(lock.name.c_str()).CompareNoCase(CString(name.c_str())) == 0;
        });
    }
    std::vector<ModelLock> m_locks;
};

TEST_F(LockTable, AgreesWithAPlainModelOnRandomUse) {
    constexpr unsigned kSeed = 20150714;
    constexpr int kOperations = 20000;
    SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    LockModel model;
    int results[3] = {};
    for (int i = 0; i < kOperations; ++i) {
        std::string name = "lock" + std::to_string(random() % 30);
        name[random() % 4] ^= 0x20;  // in the other letter case
        const int session = static_cast<int>(random() % 12);
        const unsigned action = random() % 20;
        NySeLock lock = makeLock(CString(name.c_str()));
        if (action < 11) {
            const unsigned mode = random() % 4 == 0 ? random() >> random() % 32 : random() % 8;
            const int answer = model.addLock(name, session, mode);
            ++results[answer < 0 ? 0 : 1];
            ASSERT_EQ(answer, add(lock.getStrLockName(), session, mode)) << i;
        } else if (action == 11 && m_table.GetSize() > 0) {
            NySeLock& stored = *m_table.GetAt(m_table.GetSize() - 1);
            name = narrow(stored.getStrLockName());
            model.removeLock(name, session);
            ASSERT_TRUE(m_table.removeLock(stored, user(session))) << i;
        } else if (action < 19) {
            const bool isThere = model.removeLock(name, session);
            results[2] += isThere ? 0 : 1;
            ASSERT_EQ(isThere, m_table.removeLock(lock, user(session))) << i;
            ASSERT_EQ(name, narrow(lock.getStrLockName())) << i;
        } else {
            model.deleteLockByUser(session);
            m_table.deleteLockByUser(user(session));
        }
        ASSERT_EQ(model.shown(), shown()) << i;
    }
    for (const int count : results) EXPECT_GT(count, kOperations / 50);
}

}  // namespace
