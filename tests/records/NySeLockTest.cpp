#include "NyServer/records/NySeLock.h"

#include <gtest/gtest.h>

#include <memory>

#include "NyServer/records/NySeUser.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Golden.h"
#include "tests/support/Thrown.h"

namespace {

class Lock : public ::testing::Test {
  protected:
    NySeLock m_lock;

    void hold(LONG session, unsigned int mode) {
        auto* holder = new NySeSessionLock;
        holder->setSessionNumber(session);
        holder->setLockState(mode);
        m_lock.getHolders().add(holder);
    }
    void release(LONG session) {
        NySeUser user;
        user.setStrUserName(_T("anybody"));
        user.setSessionNumber(session);
        m_lock.removeUser(user);
    }
    std::vector<LONG> sessions() const {
        std::vector<LONG> numbers;
        for (INT_PTR i = 0; i < m_lock.getHolders().GetSize(); ++i) {
            numbers.push_back(m_lock.getHolders().GetAt(i)->getSessionNumber());
        }
        return numbers;
    }
    static NySeLock named(const CString& name) {
        NySeLock lock;
        lock.setStrLockName(name);
        return lock;
    }
};

TEST_F(Lock, StartsWithoutNameAndHolders) {
    EXPECT_EQ(CString(), m_lock.getStrLockName());
    EXPECT_EQ(0, m_lock.getHolders().GetSize());
    EXPECT_TRUE(m_lock.getHolders().getDeleteObject());
}

TEST_F(Lock, KeyOneComparesNamesWithoutLetterCase) {
    EXPECT_EQ(QoSort::equal, named(_T("part/A")).vCompareTo(named(_T("PART/a")), 1));
    EXPECT_EQ(QoSort::before, named(_T("a")).vCompareTo(named(_T("B")), 1));
    EXPECT_EQ(QoSort::after, named(_T("b")).vCompareTo(named(_T("A")), 1));
    EXPECT_EQ(QoSort::noOrder, named(_T("a")).vCompareTo(named(_T("a")), 2));
}

TEST_F(Lock, CopiesTakeTheNameAndNoHolders) {
    m_lock.setStrLockName(_T("part"));
    for (const LONG session : {1, 2, 3}) hold(session, 1);
    const NySeLock copy(m_lock);
    NySeLock assigned;
    assigned = m_lock;
    const std::unique_ptr<NySeLock> clone(m_lock.clone());
    const std::unique_ptr<QoObject2> untyped(m_lock.vClone());
    for (const NySeLock* one : std::initializer_list<const NySeLock*>{
             &copy, &assigned, clone.get(), NySeLock::cast(untyped.get())}) {
        EXPECT_EQ(CString("part"), one->getStrLockName());
        EXPECT_EQ(0, one->getHolders().GetSize());
    }
    EXPECT_EQ(3, m_lock.getHolders().GetSize());
}

TEST_F(Lock, AssignmentKeepsTheHoldersOfTheTarget) {
    hold(7, 1);
    m_lock = named(_T("other"));
    EXPECT_EQ(CString("other"), m_lock.getStrLockName());
    EXPECT_EQ((std::vector<LONG>{7}), sessions());
}

TEST_F(Lock, WithoutHoldersGrantsEveryMode) {
    for (const unsigned mode : {0u, 0x01u, 0x02u, 0x18u, 0xFFFFFFFFu}) {
        EXPECT_TRUE(m_lock.seekShareMode(mode)) << mode;
    }
}

struct ShareRow {
    unsigned held;
    unsigned asked;
    bool granted;
};

TEST_F(Lock, SharesByTheTableOfModes) {
    const ShareRow rows[] = {
        {0x08, 0x01, false}, {0x10, 0x01, false}, {0x18, 0x01, false},
        {0x08, 0x02, false}, {0x10, 0x02, false}, {0x18, 0x02, false},
        {0x08, 0x03, false}, {0x10, 0x03, false}, {0x09, 0x01, false},
        {0x18, 0x04, true},  {0x18, 0x00, true},  {0x18, 0x08, true},
        {0x18, 0x10, true},  {0x18, 0x18, true},  {0x18, 0xFFFFFFFC, true},
        {0x01, 0x01, true},  {0x02, 0x02, true},  {0x03, 0x03, true},
        {0x01, 0x09, true},  {0x02, 0x1A, true},  {0x00, 0x1B, true},
        {0x04, 0x01, true},  {0x20, 0x03, true},  {0xFFFFFFE7, 0x03, true},
    };
    for (const ShareRow& row : rows) {
        m_lock.getHolders().RemoveAll();
        hold(1, row.held);
        EXPECT_EQ(row.granted, m_lock.seekShareMode(row.asked))
            << std::hex << row.held << " holds, " << row.asked << " asks";
    }
}

TEST_F(Lock, OneExcludingHolderAmongManyIsEnough) {
    hold(1, 0x01);
    hold(2, 0x02);
    EXPECT_TRUE(m_lock.seekShareMode(0x01));
    hold(3, 0x08);
    EXPECT_FALSE(m_lock.seekShareMode(0x01));
    EXPECT_TRUE(m_lock.seekShareMode(0x04));
}

TEST_F(Lock, RemovingAUserDropsEveryGrantOfTheSession) {
    for (const LONG session : {5, 3, 5, 9, 5}) hold(session, 1);
    EXPECT_EQ((std::vector<LONG>{3, 5, 5, 5, 9}), sessions());
    release(5);
    EXPECT_EQ((std::vector<LONG>{3, 9}), sessions());
    release(4);
    EXPECT_EQ((std::vector<LONG>{3, 9}), sessions());
    release(9);
    release(3);
    EXPECT_EQ((std::vector<LONG>{}), sessions());
    release(3);
}

TEST_F(Lock, TravelsAsNameAndHolders) {
    m_lock.setStrLockName(_T("A"));
    hold(7, 0x18);
    EXPECT_EQ(hex("FFFEFF01 4100 0100 FFFF DF07 0F00 'NySeSessionLock' 18000000 07000000"),
              toHex(stored([&](CArchive& ar) { m_lock.Serialize(ar); })));
}

TEST_F(Lock, LoadingReplacesTheHolders) {
    hold(1, 1);
    hold(2, 1);
    Loading loading(golden("lock-two-holders").bytes);
    m_lock.Serialize(loading.ar);
    EXPECT_EQ((std::vector<LONG>{1, 7}), sessions());
    EXPECT_EQ(CString("part/42"), m_lock.getStrLockName());
}

TEST_F(Lock, HoldersTravelAloneAsOneObject) {
    hold(7, 24);
    hold(1, 1);
    CMemFile file;
    m_lock.writeUserArray(file);
    EXPECT_EQ(toHex(golden("holders-two").bytes), toHex(contentsOf(file)));
    EXPECT_EQ(file.GetLength(), file.GetPosition());
}

TEST_F(Lock, HoldersAreWrittenWhereTheFileStands) {
    CMemFile file;
    file.Write("ab", 2);
    m_lock.writeUserArray(file);
    EXPECT_EQ(hex("'ab' FFFF DF07 1700 'NySeSessionLockPtrArray' 0000"), toHex(contentsOf(file)));
}

// Sees the schema under which it is stored.
class SchemaSpy : public NySeSessionLock {
  public:
    void Serialize(CArchive& ar) override { m_schema = ar.GetObjectSchema(); }
    UINT m_schema = 0;
};

TEST_F(Lock, HoldersTravelUnderTheRecordsSchema) {
    auto* holder = new SchemaSpy;
    m_lock.getHolders().add(holder);
    CMemFile file;
    m_lock.writeUserArray(file);
    EXPECT_EQ(2015u, holder->m_schema);
}

TEST_F(Lock, HoldersMissInAFileThatCannotGrow) {
    BYTE block[10];
    CMemFile file(block, sizeof block);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { m_lock.writeUserArray(file); }));
}

}  // namespace
