#include "NyServer/records/NySeConnectionArray.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <set>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

class ConnectionTable : public ::testing::Test {
  protected:
    NySeConnectionArray m_table;

    LONG open(const char* text) { return m_table.openConnection(CString(text)); }
    bool close(LONG id) { return m_table.closeConnection(id); }
    LONG countOf(LONG id) const { return m_table.findById(id)->getRefCount(); }
    Bytes bytes() {
        return stored([&](CArchive& ar) { m_table.Serialize(ar); });
    }
    void load(const Bytes& content) {
        Loading loading(content);
        m_table.Serialize(loading.ar);
    }
};

TEST_F(ConnectionTable, GivesIdsFromZeroAndCountsReopenings) {
    EXPECT_EQ(0, open("A"));
    EXPECT_EQ(1, open("B"));
    EXPECT_EQ(0, open("a"));
    EXPECT_EQ(2, m_table.GetSize());
    EXPECT_EQ(2, countOf(0));
    EXPECT_EQ(1, countOf(1));
    EXPECT_EQ(CString("A"), m_table.findById(0)->getStrConnection());
}

TEST_F(ConnectionTable, LastCloseFreesTheIdForTheNextConnection) {
    open("A");
    open("B");
    open("a");
    EXPECT_FALSE(close(0));
    EXPECT_EQ(1, countOf(0));
    EXPECT_TRUE(close(0));
    EXPECT_EQ(nullptr, m_table.findById(0));
    EXPECT_EQ(0, open("C"));
    EXPECT_EQ(2, open("D"));
}

TEST_F(ConnectionTable, GivesFreedIdsAgainSmallestFirst) {
    for (const char* text : {"0", "1", "2", "3", "4", "5"}) open(text);
    EXPECT_TRUE(close(5));
    EXPECT_TRUE(close(3));
    EXPECT_EQ(3, open("x"));
    EXPECT_EQ(5, open("y"));
    EXPECT_EQ(6, open("z"));
}

TEST_F(ConnectionTable, ClosingAnUnknownIdChangesNothing) {
    open("A");
    const Bytes before = bytes();
    EXPECT_FALSE(close(1));
    EXPECT_FALSE(close(-1));
    EXPECT_EQ(toHex(before), toHex(bytes()));
}

TEST_F(ConnectionTable, IsSortedById) {
    for (const char* text : {"c", "b", "a"}) open(text);
    close(1);
    open("z");
    for (LONG i = 0; i < 3; ++i) EXPECT_EQ(i, m_table.GetAt(i)->getId());
}

TEST_F(ConnectionTable, FindsByStringAndById) {
    open("Alpha");
    open("Beta");
    EXPECT_EQ(m_table.GetAt(1), m_table.findByConnection(_T("bETA")));
    EXPECT_EQ(1, m_table.lookForConnection(_T("BETA")));
    EXPECT_EQ(m_table.GetAt(0), m_table.findById(0));
    EXPECT_EQ(0, m_table.lookForId(0));
    EXPECT_EQ(nullptr, m_table.findByConnection(_T("Bet")));
    EXPECT_EQ(-1, m_table.lookForConnection(_T("")));
    EXPECT_EQ(nullptr, m_table.findById(2));
    EXPECT_EQ(-1, m_table.lookForId(-1));
}

TEST_F(ConnectionTable, CountBelowOneClosesAtOnce) {
    open("A");
    m_table.findById(0)->setRefCount(-5);
    EXPECT_TRUE(close(0));
}

TEST_F(ConnectionTable, TravelsWithItsLastIdAndFreeIds) {
    open("A");
    open("B");
    open("C");
    close(2);
    close(0);
    EXPECT_EQ(hex("0100 FFFF DF07 0E00 'NySeConnection' FFFEFF01 4200 01000000 01000000"
                  "02000000 0200 00000000 02000000"),
              toHex(bytes()));
}

TEST_F(ConnectionTable, CopiesGoOnWhereTheOriginalStood) {
    for (const char* text : {"A", "B", "C"}) open(text);
    close(1);
    NySeConnectionArray copy(m_table);
    NySeConnectionArray assigned;
    assigned.openConnection(_T("other"));
    assigned = m_table;
    const std::unique_ptr<NySeConnectionArray> clone(m_table.clone());
    NySeConnectionArray loaded;
    Loading loading(bytes());
    loaded.Serialize(loading.ar);
    for (NySeConnectionArray* one : {&copy, &assigned, clone.get(), &loaded}) {
        EXPECT_EQ(2, one->GetSize());
        EXPECT_EQ(1, one->openConnection(_T("D")));
        EXPECT_EQ(3, one->openConnection(_T("E")));
    }
    EXPECT_EQ(2, m_table.GetSize());
    EXPECT_EQ(1, open("D"));
}

TEST_F(ConnectionTable, AssignedToItselfStaysAsItIs) {
    for (const char* name : {"A", "B", "C"}) open(name);
    close(1);
    const Bytes before = bytes();
    const NySeConnectionArray& same = m_table;
    m_table = same;
    EXPECT_EQ(before, bytes());
}

TEST_F(ConnectionTable, FailedLoadLeavesANewTable) {
    open("A");
    open("B");
    close(0);
    const Bytes whole = bytes();
    for (size_t length = 0; length < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        load(whole);
        EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { load(cut); })) << length;
        EXPECT_EQ(hex("0000 FFFFFFFF 0000"), toHex(bytes())) << length;
    }
    EXPECT_EQ(0, open("C"));
}

TEST_F(ConnectionTable, FailedLoadOfAViewDeletesWhatItRead) {
    open("A");
    const Bytes whole = bytes();
    NySeConnectionArray view(QoArraySerial2::kDoNotDelete);
    for (size_t length = 0; length < whole.size(); ++length) {
        Loading loading(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { view.Serialize(loading.ar); }));
        EXPECT_EQ(0, view.GetSize());
        EXPECT_FALSE(view.getDeleteObject());
    }
}

TEST_F(ConnectionTable, FreeIdsBeyondTheDataAreRefused) {
    for (const char* count : {"0100", "FEFF 00000000", "FFFF FFFFFF7F", "FFFF FFFFFFFF 01000000"}) {
        EXPECT_EQ(CArchiveException::endOfFile,
                  archiveCause([&] { load(fromHex(std::string("0000 FFFFFFFF") + count)); }))
            << count;
    }
}

// A table that was loaded may name an id twice.
TEST_F(ConnectionTable, GivesAnIdTwiceThatWasFreedTwice) {
    load(
        fromHex("0100 FFFF DF07 0E00 'NySeConnection' FFFEFF01 4100 03000000 01000000"
                "09000000 0100 03000000"));
    EXPECT_TRUE(close(3));
    EXPECT_EQ(hex("0000 09000000 0200 03000000 03000000"), toHex(bytes()));
    EXPECT_EQ(3, open("B"));
    EXPECT_EQ(3, open("C"));
    EXPECT_EQ(10, open("D"));
}

TEST_F(ConnectionTable, CountsOfOpensWrapWhenClosedToo) {
    open("A");
    m_table.findById(0)->setRefCount(INT32_MIN);
    EXPECT_FALSE(close(0));
    EXPECT_EQ(INT32_MAX, countOf(0));
}

TEST_F(ConnectionTable, LoadedNumbersAtTheirLimitsWrap) {
    load(
        fromHex("0100 FFFF DF07 0E00 'NySeConnection' FFFEFF01 4100 00000000 FFFFFF7F"
                "FFFFFF7F 0000"));
    EXPECT_EQ(0, open("A"));
    EXPECT_EQ(INT32_MIN, countOf(0));
    EXPECT_EQ(INT32_MIN, open("B"));
}

// The same table in plain containers.
struct Model {
    std::map<LONG, std::pair<std::string, LONG>> open;
    std::multiset<LONG> freeIds;
    LONG lastId = -1;

    LONG openConnection(const std::string& text) {
        for (auto& [id, entry] : open) {
            if (entry.first == text) return ++entry.second, id;
        }
        LONG id = freeIds.empty() ? ++lastId : *freeIds.begin();
        if (!freeIds.empty()) freeIds.erase(freeIds.begin());
        open[id] = {text, 1};
        return id;
    }
    bool closeConnection(LONG id) {
        const auto found = open.find(id);
        if (found == open.end() || --found->second.second > 0) return false;
        freeIds.insert(id);
        open.erase(found);
        return true;
    }
};

TEST_F(ConnectionTable, AgreesWithAPlainModelOnRandomUse) {
    constexpr unsigned kSeed = 20150713;
    SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    Model model;
    for (int i = 0; i < 20000; ++i) {
        if (random() % 2 == 0) {
            const std::string text = "c" + std::to_string(random() % 40);
            ASSERT_EQ(model.openConnection(text), open(text.c_str())) << i;
        } else {
            const LONG id = static_cast<LONG>(random() % 42) - 1;
            ASSERT_EQ(model.closeConnection(id), close(id)) << i;
        }
        ASSERT_EQ(static_cast<INT_PTR>(model.open.size()), m_table.GetSize());
    }
    INT_PTR i = 0;
    for (const auto& [id, entry] : model.open) {
        EXPECT_EQ(id, m_table.GetAt(i)->getId());
        EXPECT_EQ(entry.second, m_table.GetAt(i++)->getRefCount());
    }
}

}  // namespace
