// Records that stand more than once in an archive, in any order of their addresses: each is written
// once, and its number in its other places.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "NyServer/records/NySeLockArray.h"
#include "tests/base/StreamFile.h"
#include "tests/records/PlainWriter.h"
#include "tests/support/ArchiveBytes.h"

namespace {

constexpr unsigned kShuffleSeed = 20150602;

// Offers of an archive what every class library's does.
class SimpleArchive {
  public:
    explicit SimpleArchive(CArchive& ar) : m_archive(ar) {}

    operator CArchive&() const { return m_archive; }
    template <class T>
    SimpleArchive& operator<<(const T& value) {
        m_archive << value;
        return *this;
    }

  private:
    CArchive& m_archive;
};

class DerivedHolder : public NySeSessionLock {
  public:
    void Serialize(CArchive& ar) override { ar << BYTE{0x77}; }
};

class SharedRecords : public ::testing::Test {
  protected:
    void makeLocks(int count, int holders = 3) {
        for (int i = 0; i < count; ++i) {
            auto lock = std::make_unique<NySeLock>();
            lock->setStrLockName(CString(static_cast<WCHAR>('a' + i % 26), 1 + i % 30));
            for (int j = 0; j < holders; ++j) addHolder(*lock, i, j);
            m_locks.push_back(std::move(lock));
        }
    }
    static void addHolder(NySeLock& lock, int session, int state) {
        auto holder = std::make_unique<NySeSessionLock>();
        holder->setSessionNumber(session);
        holder->setLockState(static_cast<unsigned int>(state));
        lock.getHolders().append(holder.release());
    }
    NySeLock& lock(size_t index) { return *m_locks[index]; }
    void list(NySeLockArray& table, std::vector<size_t> indices) {
        for (const size_t index : indices) table.append(m_locks[index].get());
    }
    void listAll(NySeLockArray& table) {
        for (const auto& each : m_locks) table.append(each.get());
    }
    void sortByAddress(bool rising) {
        std::sort(m_locks.begin(), m_locks.end(), [rising](const auto& left, const auto& right) {
            return rising ? left < right : right < left;
        });
    }
    template <class... Tables>
    static void expectPlainBytes(Tables&... tables) {
        PlainWriter plain;
        (plain.table(tables), ...);
        const Bytes expected = plain.bytes();
        const Bytes written = stored([&](CArchive& ar) { (tables.Serialize(ar), ...); });
        EXPECT_TRUE(expected == written);
        for (const int bufferSize : {1, 200, 4096}) {
            StreamFile file;
            CArchive ar(&file, CArchive::store, bufferSize);
            (tables.Serialize(ar), ...);
            ar.Close();
            EXPECT_TRUE(expected == file.m_bytes) << "with a buffer of " << bufferSize;
        }
    }

    std::vector<std::unique_ptr<NySeLock>> m_locks;
    NySeLockArray m_table{QoArraySerial2::kDoNotDelete};
    NySeLockArray m_other{QoArraySerial2::kDoNotDelete};
};

TEST_F(SharedRecords, LockTwiceInATableIsWrittenOnce) {
    makeLocks(3);
    list(m_table, {0, 1, 1, 2, 0});
    expectPlainBytes(m_table);
}

TEST_F(SharedRecords, TablesOfOneArchiveShareTheirLocks) {
    makeLocks(300);
    listAll(m_table);
    list(m_other, {299, 0, 150, 299});
    expectPlainBytes(m_table, m_other);
}

TEST_F(SharedRecords, LocksShareTheirHolders) {
    makeLocks(3);
    NySeSessionLock* const shared = lock(0).getHolders().GetAt(1);
    for (const size_t index : {size_t{0}, size_t{1}, size_t{2}}) {
        lock(index).getHolders().append(shared);
    }
    listAll(m_table);
    expectPlainBytes(m_table);
    for (const size_t index : {size_t{0}, size_t{1}, size_t{2}}) {
        lock(index).getHolders().SetAt(3, nullptr);
    }
}

TEST_F(SharedRecords, AddressesMayRiseAndFall) {
    makeLocks(500);
    for (const bool rising : {true, false}) {
        sortByAddress(rising);
        listAll(m_table);
        listAll(m_other);
        expectPlainBytes(m_table, m_other);
        m_table.RemoveAll();
        m_other.RemoveAll();
    }
}

TEST_F(SharedRecords, AddressesMayBeInAnyOrder) {
    makeLocks(3000);
    std::shuffle(m_locks.begin(), m_locks.end(), std::mt19937(kShuffleSeed));
    listAll(m_table);
    std::shuffle(m_locks.begin(), m_locks.end(), std::mt19937(kShuffleSeed + 1));
    listAll(m_other);
    expectPlainBytes(m_table, m_other);
}

// Holders of one lock lie between those of another, the last first.
TEST_F(SharedRecords, HoldersOfTwoLocksMayAlternate) {
    makeLocks(4, 0);
    for (const bool rising : {true, false}) {
        std::vector<std::unique_ptr<NySeSessionLock>> holders(400);
        for (auto& each : holders) each = std::make_unique<NySeSessionLock>();
        std::sort(holders.begin(), holders.end(), [rising](const auto& left, const auto& right) {
            return rising ? left < right : right < left;
        });
        for (size_t i = 0; i < holders.size(); ++i) {
            lock(2 * size_t{!rising} + i % 2).getHolders().append(holders[i].release());
        }
    }
    listAll(m_table);
    listAll(m_other);
    expectPlainBytes(m_table, m_other);
}

// Each repeat stands where the addresses begin, end, or leave those near the last ones.
TEST_F(SharedRecords, HolderMayBeRepeatedAtEitherEndOfItsTable) {
    makeLocks(1, 200);
    const NySeSessionLockPtrArray& holders = lock(0).getHolders();
    for (const INT_PTR again : {0, 1, 63, 64, 65, 198, 199}) {
        SCOPED_TRACE(again);
        NySeSessionLockPtrArray first{QoArraySerial2::kDoNotDelete};
        NySeSessionLockPtrArray last{QoArraySerial2::kDoNotDelete};
        first.append(holders.GetAt(again));
        for (INT_PTR i = 0; i < holders.GetSize(); ++i) {
            first.append(holders.GetAt(i));
            last.append(holders.GetAt(i));
        }
        last.append(holders.GetAt(again));
        PlainWriter plain;
        plain.holders(first);
        plain.holders(last);
        EXPECT_TRUE(plain.bytes() == stored([&](CArchive& ar) {
                        first.Serialize(ar);
                        last.Serialize(ar);
                    }));
    }
}

// Numbers from 7FFF on take four bytes.
TEST_F(SharedRecords, NumbersBecomeLong) {
    makeLocks(9000);
    listAll(m_table);
    list(m_other, {0, 8190, 8191, 8192, 8999});
    expectPlainBytes(m_table, m_other);
}

TEST_F(SharedRecords, ClassMayHaveALongNumber) {
    constexpr int kMapped = 0x7FFF;
    makeLocks(1);
    PlainWriter plain;
    for (int i = 0; i < kMapped; ++i) plain.map(nullptr);
    plain.holders(lock(0).getHolders());
    EXPECT_TRUE(plain.bytes() == stored([&](CArchive& ar) {
                    for (int i = 0; i < kMapped; ++i) ar.MapObject(nullptr);
                    lock(0).getHolders().Serialize(ar);
                }));
}

TEST_F(SharedRecords, LockMayHaveManyHoldersOrNone) {
    makeLocks(2, 0);
    makeLocks(1, 5000);
    makeLocks(2, 1);
    listAll(m_table);
    expectPlainBytes(m_table, m_table);
}

TEST_F(SharedRecords, NullStandsBetweenRecords) {
    makeLocks(20);
    lock(10).getHolders().InsertAt(1, nullptr);
    listAll(m_table);
    m_table.InsertAt(5, nullptr);
    expectPlainBytes(m_table);
}

TEST_F(SharedRecords, HolderOfADerivedClassWritesItsOwnFields) {
    makeLocks(1, 1);
    lock(0).getHolders().append(new DerivedHolder);
    addHolder(lock(0), 2, 3);
    EXPECT_EQ(toHex(stored([&](CArchive& ar) { lock(0).getHolders().Serialize(ar); })),
              hex("03 00  FF FF DF 07 0F 00 'NySeSessionLock' 00 00 00 00 00 00 00 00"
                  "01 80 77  01 80 03 00 00 00 02 00 00 00"));
}

TEST_F(SharedRecords, HolderOfADerivedClassStandsAmongOthersOfAKnownClass) {
    makeLocks(2, 1);
    lock(1).getHolders().append(new DerivedHolder);
    EXPECT_EQ(toHex(stored([&](CArchive& ar) {
                  lock(0).getHolders().Serialize(ar);
                  lock(1).getHolders().Serialize(ar);
              })),
              hex("01 00  FF FF DF 07 0F 00 'NySeSessionLock' 00 00 00 00 00 00 00 00"
                  "02 00  01 80 00 00 00 00 01 00 00 00  01 80 77"));
}

// What was mapped counts as written.
TEST_F(SharedRecords, MappedLockIsNotWritten) {
    makeLocks(2, 0);
    list(m_table, {0, 1, 0});
    EXPECT_EQ(toHex(stored([&](CArchive& ar) {
                  ar.MapObject(&lock(1));
                  m_table.Serialize(ar);
              })),
              hex("03 00  FF FF DF 07 08 00 'NySeLock' FF FE FF 01 61 00 00 00"
                  "01 00  03 00"));
}

// Mapping an object writes no class.
TEST_F(SharedRecords, MappedHolderPrecedesTheFirstOfItsClass) {
    makeLocks(2, 3);
    const NySeSessionLock* const mapped = lock(0).getHolders().GetAt(0);
    PlainWriter plain;
    plain.value(LONG{1});
    plain.map(mapped);
    plain.holders(lock(1).getHolders());
    EXPECT_TRUE(plain.bytes() == stored([&](CArchive& ar) {
                    ar << LONG{1};  // opens the window
                    ar.MapObject(mapped);
                    lock(1).getHolders().Serialize(ar);
                }));
}

// Each archive has numbers of its own.
TEST_F(SharedRecords, TablesAreWrittenToTwoArchivesAtOnce) {
    makeLocks(100);
    listAll(m_table);
    list(m_other, {50, 0, 99});
    PlainWriter plain;
    plain.table(m_other);
    plain.table(m_table);
    CMemFile outerFile;
    CArchive outer(&outerFile, CArchive::store);
    m_other.Serialize(outer);
    expectPlainBytes(m_table, m_other);
    m_table.Serialize(outer);
    outer.Close();
    EXPECT_TRUE(plain.bytes() == contentsOf(outerFile));
}

TEST_F(SharedRecords, HoldersAreWrittenWithinATable) {
    makeLocks(3);
    list(m_table, {0, 1});
    list(m_other, {0, 1, 2});
    CMemFile outerFile;
    CArchive outer(&outerFile, CArchive::store);
    m_table.Serialize(outer);
    CMemFile innerFile;
    lock(1).writeUserArray(innerFile);
    m_other.Serialize(outer);
    outer.Close();
    PlainWriter plain;
    plain.table(m_table);
    plain.table(m_other);
    EXPECT_TRUE(plain.bytes() == contentsOf(outerFile));
}

TEST_F(SharedRecords, ArchiveThatWritesOneAtATimeGetsTheSameBytes) {
    makeLocks(2, 30);
    PlainWriter plain;
    plain.holders(lock(0).getHolders());
    plain.holders(lock(1).getHolders());
    plain.holders(lock(0).getHolders());
    EXPECT_TRUE(plain.bytes() == stored([&](CArchive& ar) {
                    SimpleArchive simple(ar);
                    for (const size_t index : {size_t{0}, size_t{1}, size_t{0}}) {
                        NySe::storeTable<NySeSessionLock>(lock(index).getHolders(), simple);
                    }
                }));
}

// A record before, inside and after its table, and the table again.
TEST_F(SharedRecords, HolderStandsBeforeAndAfterItsTable) {
    makeLocks(3);
    listAll(m_table);
    NySeSessionLock* const known = lock(1).getHolders().GetAt(2);
    PlainWriter plain;
    plain.holder(known);
    plain.table(m_table);
    plain.holder(known);
    plain.holder(lock(2).getHolders().GetAt(0));
    plain.holders(lock(1).getHolders());
    EXPECT_TRUE(plain.bytes() == stored([&](CArchive& ar) {
                    ar << known;
                    m_table.Serialize(ar);
                    ar << known << lock(2).getHolders().GetAt(0);
                    lock(1).getHolders().Serialize(ar);
                }));
}

// An owning table may hold a record twice for a while.
TEST_F(SharedRecords, OwningTableHoldsALockTwice) {
    NySeLockArray table;
    makeLocks(3);
    for (const size_t index : {size_t{0}, size_t{1}, size_t{0}, size_t{2}, size_t{1}}) {
        table.append(&lock(index));
    }
    lock(2).getHolders().append(lock(0).getHolders().GetAt(0));
    expectPlainBytes(table);
    lock(2).getHolders().SetAt(3, nullptr);
    table.setDeleteObject(false);
}

// Tables that own and that borrow, whose records are shared at random, in place and as objects.
TEST_F(SharedRecords, RandomTablesHaveThePlainBytes) {
    std::mt19937 random(kShuffleSeed);
    const auto below = [&random](size_t limit) { return random() % limit; };
    makeLocks(40);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round << ", seed " << kShuffleSeed);
        std::vector<NySeSessionLock*> lent;
        for (size_t i = below(4); i > 0; --i) {
            NySeSessionLockPtrArray& from = lock(below(40)).getHolders();
            if (from.GetSize() > 0) lent.push_back(from.GetAt(static_cast<INT_PTR>(below(3))));
        }
        NySeSessionLockPtrArray borrowing{QoArraySerial2::kDoNotDelete};
        NySeSessionLockPtrArray owning;
        owning.append(new NySeSessionLock);
        owning.append(new NySeSessionLock);
        for (NySeSessionLock* const each : lent) {
            borrowing.append(each);
            owning.append(each);
        }
        if (below(4) == 0) owning.InsertAt(1, nullptr);
        NySeLockArray locks(below(2) == 0 ? QoArraySerial2::kDoNotDelete : 0);
        for (size_t i = below(30); i > 0; --i) locks.append(&lock(below(40)));
        PlainWriter plain;
        StreamFile file;
        CArchive ar(&file, CArchive::store, below(2) == 0 ? 1 : 4096);
        for (size_t i = 1 + below(6); i > 0; --i) {
            switch (below(5)) {
                case 0:
                    plain.table(locks);
                    locks.Serialize(ar);
                    break;
                case 1:
                    plain.holders(borrowing);
                    borrowing.Serialize(ar);
                    break;
                case 2:
                    plain.holders(owning);
                    owning.Serialize(ar);
                    break;
                case 3:
                    plain.map(&lock(i));
                    ar.MapObject(&lock(i));
                    break;
                default:
                    plain.holder(lock(i).getHolders().GetAt(0));
                    ar << lock(i).getHolders().GetAt(0);
            }
        }
        ar.Close();
        EXPECT_TRUE(plain.bytes() == file.m_bytes);
        locks.setDeleteObject(false);
        for (INT_PTR i = owning.GetSize() - 1; i >= 2; --i) {
            if (std::count(lent.begin(), lent.end(), owning.GetAt(i)) > 0) owning.SetAt(i, nullptr);
        }
    }
}

TEST_F(SharedRecords, FourThreadsStoreTheSameTable) {
    makeLocks(500);
    listAll(m_table);
    PlainWriter plain;
    plain.table(m_table);
    plain.table(m_table);
    std::array<int, 4> right{};
    std::vector<std::thread> threads;
    for (int& count : right) {
        threads.emplace_back([this, &count, &plain] {
            for (int i = 0; i < 20; ++i) {
                const Bytes written = stored([this](CArchive& ar) {
                    m_table.Serialize(ar);
                    m_table.Serialize(ar);
                });
                if (written == plain.bytes()) ++count;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const int count : right) EXPECT_EQ(20, count);
}

}  // namespace
