// The holders of a lock.
#include "NyServer/records/NySeLock.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Golden.h"
#include "tests/support/Thrown.h"

namespace {

class Lock : public ::testing::Test {
  protected:
    NySeLock m_lock;
    CMemFile m_file;

    void hold(LONG session, unsigned int mode) {
        m_lock.getHolders().add(makeSessionLock(session, mode).clone());
    }
    Sessions sessions() const { return sessionsOf(m_lock.getHolders()); }
    std::string written() {
        m_lock.writeUserArray(m_file);
        EXPECT_EQ(m_file.GetLength(), m_file.GetPosition());
        return toHex(contentsOf(m_file));
    }
};

TEST_F(Lock, StartsWithoutHoldersAndOwnsThem) {
    EXPECT_EQ(0, m_lock.getHolders().GetSize());
    EXPECT_TRUE(m_lock.getHolders().getDeleteObject());
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
    m_lock = makeLock(_T("other"));
    EXPECT_EQ(CString("other"), m_lock.getStrLockName());
    EXPECT_EQ((Sessions{7}), sessions());
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

TEST_F(Lock, LoadingReplacesTheHolders) {
    hold(1, 1);
    hold(2, 1);
    Loading loading(golden("lock-two-holders").bytes);
    m_lock.Serialize(loading.ar);
    EXPECT_EQ((Sessions{1, 7}), sessions());
    EXPECT_EQ(CString("part/42"), m_lock.getStrLockName());
}

TEST_F(Lock, HoldersAloneAreStoredAsOneObject) {
    hold(7, 24);
    hold(1, 1);
    EXPECT_EQ(toHex(golden("holders-two").bytes), written());
}

TEST_F(Lock, HoldersAreWrittenAtTheFilesPosition) {
    m_file.Write("ab", 2);
    EXPECT_EQ(hex("'ab' FFFF DF07 1700 'NySeSessionLockPtrArray' 0000"), written());
}

// Sees the schema under which it is stored.
class SchemaSpy : public NySeSessionLock {
  public:
    void Serialize(CArchive& ar) override { m_schema = ar.GetObjectSchema(); }
    UINT m_schema = 0;
};

TEST_F(Lock, HoldersAreStoredUnderTheRecordsSchema) {
    auto* holder = new SchemaSpy;
    m_lock.getHolders().add(holder);
    written();
    EXPECT_EQ(2015u, holder->m_schema);
}

TEST_F(Lock, HoldersAreMissingFromAFileThatCannotGrow) {
    BYTE block[10];
    CMemFile file(block, sizeof block);
    EXPECT_TRUE(throwsA<CMemoryException>([&] { m_lock.writeUserArray(file); }));
}

}  // namespace
