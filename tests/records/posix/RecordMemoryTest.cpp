// How much memory a read takes, and what happens when there is none.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>

#include "NyServer/records/NySeConnectionArray.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeUserPtrArray.h"
#include "tests/records/FilledTables.h"
#include "tests/records/GoldenRecords.h"
#include "tests/support/AllocationCount.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/Thrown.h"

namespace {

// Bytes held at one time for each byte read, and for the exception and the archive's own lists.
constexpr size_t kMultiple = 24;
constexpr size_t kOverhead = 1024;

// The most memory held while `read` reads the bytes, which may fail.
template <class Read>
size_t memoryToRead(Bytes bytes, Read read) {
    Loading loading(std::move(bytes));
    const AllocationCount count;
    archiveCause([&] { read(loading.ar); });
    return count.peakBytes();
}

void readObject(CArchive& ar) {
    const std::unique_ptr<CObject> object(ar.ReadObject(nullptr));
}

void readFields(const std::string& className, CArchive& ar) {
    const std::unique_ptr<CObject> object(
        CRuntimeClass::FromName(className.c_str())->CreateObject());
    object->Serialize(ar);
}

size_t memoryToRead(const Golden& vector, const Bytes& bytes) {
    if (vector.form == "object") return memoryToRead(bytes, readObject);
    return memoryToRead(bytes, [&](CArchive& ar) { readFields(vector.className, ar); });
}

// The smallest records there are, in the largest number: the worst that the bytes can do.
TEST(RecordMemoryOfMany, IsBoundedByTheBytesPresent) {
    constexpr size_t kRecords = 50000;
    const struct {
        const char* table;
        const char* record;
        const char* fields;
    } rows[] = {{"0D00 'NySeLockArray'", "0800 'NySeLock'", "FFFEFF00 0000"},
                {"1700 'NySeSessionLockPtrArray'", "0F00 'NySeSessionLock'", "00000000 00000000"},
                {"1300 'NySeConnectionArray'", "0E00 'NySeConnection'", "00 00000000 00000000"}};
    for (const auto& row : rows) {
        const Bytes fields = fromHex(row.fields);
        const Bytes head =
            fromHex(std::string("FFFF DF07") + row.table + "FFFF FFFFFFFF FFFF DF07" + row.record);
        const Bytes bytes = head + fields + repeated(fromHex("0380") + fields, kRecords);
        const size_t size = bytes.size();
        EXPECT_LE(memoryToRead(bytes, readObject), kMultiple * size + kOverhead) << row.table;
    }
}

// Two bytes for each record beyond the first, which may be large.
TEST(RecordMemoryOfMany, IsBoundedByTheBytesWhereOneIsRepeated) {
    const std::string longText = toHex(repeated(fromHex("41"), 5000));
    const struct {
        const char* table;
        std::string record;
    } rows[] = {
        {"NySeUserPtrArray", "0800 'NySeUser' FFFFFFFF 00 00 00 FFFFFFFF 00000000 00000000"},
        {"NySeUserPtrArray",
         "0800 'NySeUser' FFFFFFFF 00 FF8813" + longText + "00 FFFFFFFF 00000000 00000000"},
        {"NySeSessionLockPtrArray", "0F00 'NySeSessionLock' 00000000 00000000"},
        {"NySeConnectionArray", "0E00 'NySeConnection' 00 00000000 00000000"},
        {"NySeLockArray", "0800 'NySeLock' FF8813" + longText + "0000"}};
    for (const auto& row : rows) {
        for (const size_t references : {1, 3, 6, 12, 24, 48, 100, 20000}) {
            const Bytes bytes = fromHex("FFFF FFFFFFFF FFFF DF07" + row.record) +
                                repeated(fromHex("0200"), references);
            const size_t size = bytes.size();
            EXPECT_LE(memoryToRead(bytes, [&](CArchive& ar) { readFields(row.table, ar); }),
                      kMultiple * size + kOverhead)
                << row.table << ", " << references;
        }
    }
}

class RecordMemory : public ::testing::TestWithParam<Golden> {};

TEST_P(RecordMemory, IsBoundedByTheBytesPresentWhateverTheyAnnounce) {
    const Bytes& whole = GetParam().bytes;
    for (size_t i = 0; i < whole.size(); ++i) {
        for (const char* damage : {"FF", "FFFF", "FFFFFF7F", "FFFFFFFFFFFF", "FFFFFEFFFF7F"}) {
            Bytes bytes = whole;
            const Bytes overlay = fromHex(damage);
            for (size_t k = 0; k < overlay.size() && i + k < bytes.size(); ++k) {
                bytes[i + k] = overlay[k];
            }
            EXPECT_LE(memoryToRead(GetParam(), bytes), kMultiple * whole.size() + kOverhead)
                << "byte " << i << ", " << damage;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Vectors, RecordMemory, ::testing::ValuesIn(goldenRecords()),
                         [](const auto& vector) { return testNameOf(vector.param); });

TEST(RecordMemoryShortage, AnywhereInAReadIsReportedAndLeaksNothing) {
    const Bytes bytes = golden("locks-two").bytes;
    for (size_t allocations = 0;; ++allocations) {
        Loading loading(bytes);
        AllocationCount count;
        count.failAfter(allocations);
        try {
            readObject(loading.ar);
            ASSERT_FALSE(count.hasFailed());
            ASSERT_GT(allocations, 10u);
            return;
        } catch (const std::bad_alloc&) {
            ASSERT_TRUE(count.hasFailed());
        } catch (CMemoryException* error) {
            error->Delete();
            ASSERT_TRUE(count.hasFailed());
        }
    }
}

TEST(RecordMemoryShortage, AnywhereInACloneReturnsNull) {
    NySeUserPtrArray users;
    for (int i = 0; i < 3; ++i) {
        NySeUser user;
        user.setStrUserName(CString(_T("a name too long to lie inside the object")));
        users.append(user.clone());
    }
    for (size_t allocations = 0;; ++allocations) {
        AllocationCount count;
        count.failAfter(allocations);
        const std::unique_ptr<NySeUserPtrArray> clone(users.clone());
        ASSERT_EQ(count.hasFailed(), clone == nullptr);
        if (clone != nullptr) break;
    }
}

TEST(RecordMemoryShortage, DoesNotChangeTheResultsOfFinders) {
    const FilledTables tables;
    for (int i = 0; i < FilledTables::kRecords; ++i) {
        AllocationCount count;
        count.failAfter(0);
        const bool found = tables.findsAll(i);
        ASSERT_TRUE(found && !count.hasFailed()) << i;
    }
}

TEST(RecordMemoryShortage, DoesNotGrantALockThatAnotherHolds) {
    FilledTables tables;
    NySeUser second;
    second.setSessionNumber(-7);
    for (int i = 0; i < FilledTables::kRecords; ++i) {
        const CString name = FilledTables::nameOf(i);
        AllocationCount count;
        count.failAfter(0);
        ASSERT_EQ(-1, tables.m_locks.addLock(name, second, 0x01)) << i;
        ASSERT_FALSE(count.hasFailed()) << i;
    }
    ASSERT_EQ(FilledTables::kRecords, tables.m_locks.GetSize());
}

// Calls `change` with each allocation failing in turn, on a table that fills its memory and has so
// many free ids.
template <class Change>
void expectUnchangedByShortage(LONG freeIds, Change change) {
    constexpr LONG kOpen = 256;
    NySeConnectionArray source;
    for (LONG i = 0; i < kOpen + freeIds; ++i) source.openConnection(FilledTables::nameOf(i));
    for (LONG id = 0; id < freeIds; ++id) source.closeConnection(id);
    const auto bytesOf = [](NySeConnectionArray& table) {
        return stored([&](CArchive& ar) { table.Serialize(ar); });
    };
    const Bytes before = bytesOf(source);
    for (size_t allocations = 0;; ++allocations) {
        NySeConnectionArray table;
        table.Serialize(Loading(before).ar);
        bool failed = false;
        {
            AllocationCount count;
            count.failAfter(allocations);
            try {
                change(table);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            ASSERT_EQ(count.hasFailed(), failed);
        }
        ASSERT_EQ(failed, before == bytesOf(table)) << allocations;
        if (!failed) {
            ASSERT_GT(allocations, 0u);
            return;
        }
    }
}

TEST(RecordMemoryShortage, LosesNoIdInOpeningAConnection) {
    const CString name = FilledTables::nameOf(-1);
    for (const LONG freeIds : {0, 1, 64}) {
        expectUnchangedByShortage(freeIds, [&](auto& table) { table.openConnection(name); });
    }
}

TEST(RecordMemoryShortage, LosesNoIdInClosingAConnection) {
    for (const LONG freeIds : {64, 128}) {
        expectUnchangedByShortage(freeIds, [](auto& table) { table.closeConnection(200); });
    }
}

}  // namespace
