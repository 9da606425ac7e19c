// Random tables come back from their bytes as the same bytes.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"

namespace {

constexpr unsigned kSeed = 20150601;
constexpr int kTables = 60;

class RandomTables : public ::testing::Test {
  protected:
    std::mt19937 m_random{kSeed};

    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    LONG number() { return static_cast<LONG>(m_random()) >> below(32); }
    CString text() {
        std::basic_string<WCHAR> units;
        const int length = below(10) == 0 ? below(600) : below(20);
        for (int i = 0; i < length; ++i) units += static_cast<WCHAR>(m_random());
        return CString(units.data(), length);
    }
    NySeUser user() {
        NySeUser one = makeUser(text(), number());
        one.setStrHostName(text());
        one.setStrComputerName(text());
        one.setPort(number());
        one.setSchema(number());
        one.setSoftType(number());
        return one;
    }

    template <class Table, class Fill>
    void expectRoundTrip(Fill fill) {
        SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
        for (int i = 0; i < kTables; ++i) {
            Table table;
            for (int records = below(80); records > 0; --records) fill(table);
            const Bytes bytes = stored([&](CArchive& ar) { ar.WriteObject(&table); });
            Loading loading(bytes);
            const std::unique_ptr<CObject> loaded(loading.ar.ReadObject(RUNTIME_CLASS(Table)));
            ASSERT_EQ(table.GetSize(), static_cast<const Table&>(*loaded).GetSize());
            ASSERT_EQ(bytes, stored([&](CArchive& ar) { ar.WriteObject(loaded.get()); }));
            ASSERT_EQ(0u, loading.ar.BytesLeft());
        }
    }
};

TEST_F(RandomTables, OfUsers) {
    expectRoundTrip<NySeUserPtrArray>([this](auto& table) { table.add(user().clone()); });
}

TEST_F(RandomTables, OfConnections) {
    expectRoundTrip<NySeConnectionArray>([this](auto& table) {
        table.openConnection(text());
        if (below(3) == 0) table.closeConnection(below(40));
    });
}

TEST_F(RandomTables, OfSessionLocks) {
    expectRoundTrip<NySeSessionLockPtrArray>([this](auto& table) {
        table.add(makeSessionLock(number(), static_cast<unsigned>(number())).clone());
    });
}

TEST_F(RandomTables, OfLocks) {
    expectRoundTrip<NySeLockArray>([this](auto& table) {
        const CString name = text();
        for (int holders = below(4); holders >= 0; --holders) {
            table.addLock(name, user(), static_cast<unsigned>(below(8)));
        }
    });
}

}  // namespace
