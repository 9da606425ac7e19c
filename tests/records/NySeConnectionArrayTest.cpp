#include "NyServer/records/NySeConnectionArray.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

class ConnectionTable : public ::testing::Test {
  protected:
    NySeConnectionArray m_table;

    LONG open(const char* text) { return m_table.openConnection(CString(text)); }
    // The ids of the texts, one character each.
    std::vector<LONG> openAll(const std::string& texts) {
        std::vector<LONG> ids;
        for (const char text : texts) ids.push_back(open(std::string(1, text).c_str()));
        return ids;
    }
    bool close(LONG id) { return m_table.closeConnection(id); }
    LONG countOf(LONG id) const { return m_table.findById(id)->getRefCount(); }
    Bytes bytes() {
        return stored([&](CArchive& ar) { m_table.Serialize(ar); });
    }
    // The cause with which reading these bytes into the table ends, -1 for none.
    static int load(NySeConnectionArray& table, const Bytes& content) {
        Loading loading(content);
        return archiveCause([&] { table.Serialize(loading.ar); });
    }
    void load(std::string_view content) { ASSERT_EQ(-1, load(m_table, fromHex(content))); }
    // Calls `check` after each part of the table's bytes was read into `target`.
    template <class Check>
    void readEachPart(const Bytes& whole, NySeConnectionArray& target, Check check) {
        for (size_t length = 0; length < whole.size(); ++length) {
            const Bytes part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(CArchiveException::endOfFile, load(target, part)) << length;
            check();
        }
    }
};

using Ids = std::vector<LONG>;

TEST_F(ConnectionTable, CountBelowOneClosesAtOnce) {
    open("A");
    m_table.findById(0)->setRefCount(-5);
    EXPECT_TRUE(close(0));
}

TEST_F(ConnectionTable, CopiesContinueFromTheStateOfTheOriginal) {
    openAll("ABC");
    close(1);
    NySeConnectionArray copy(m_table);
    NySeConnectionArray assigned;
    assigned.openConnection(_T("other"));
    assigned = m_table;
    const std::unique_ptr<NySeConnectionArray> clone(m_table.clone());
    NySeConnectionArray loaded;
    load(loaded, bytes());
    for (NySeConnectionArray* one : {&copy, &assigned, clone.get(), &loaded}) {
        EXPECT_EQ(2, one->GetSize());
        EXPECT_EQ(1, one->openConnection(_T("D")));
        EXPECT_EQ(3, one->openConnection(_T("E")));
    }
    EXPECT_EQ(2, m_table.GetSize());
    EXPECT_EQ(1, open("D"));
}

TEST_F(ConnectionTable, AssignedToItselfStaysAsItIs) {
    openAll("ABC");
    close(1);
    const Bytes before = bytes();
    const NySeConnectionArray& same = m_table;
    m_table = same;
    EXPECT_EQ(before, bytes());
}

TEST_F(ConnectionTable, FailedLoadLeavesANewTable) {
    openAll("AB");
    close(0);
    const Bytes whole = bytes();
    readEachPart(whole, m_table, [&] {
        EXPECT_EQ(hex("0000 FFFFFFFF 0000"), toHex(bytes()));
        EXPECT_EQ(0, open("C"));
        load(m_table, whole);
    });
}

TEST_F(ConnectionTable, FailedLoadOfAViewDeletesWhatItRead) {
    open("A");
    NySeConnectionArray view(QoArraySerial2::kDoNotDelete);
    readEachPart(bytes(), view, [&] {
        EXPECT_EQ(0, view.GetSize());
        EXPECT_FALSE(view.getDeleteObject());
    });
}

TEST_F(ConnectionTable, FreeIdsBeyondTheDataAreRefused) {
    for (const char* count : {"0100", "FEFF 00000000", "FFFF FFFFFF7F", "FFFF FFFFFFFF 01000000"}) {
        EXPECT_EQ(CArchiveException::endOfFile,
                  load(m_table, fromHex(std::string("0000 FFFFFFFF") + count)))
            << count;
    }
}

// A table that was loaded may name an id twice.
TEST_F(ConnectionTable, AssignsAnIdTwiceThatWasFreedTwice) {
    load(
        "0100 FFFF DF07 0E00 'NySeConnection' FFFEFF01 4100 03000000 01000000"
        "09000000 0100 03000000");
    EXPECT_TRUE(close(3));
    EXPECT_EQ(hex("0000 09000000 0200 03000000 03000000"), toHex(bytes()));
    EXPECT_EQ((Ids{3, 3, 10}), openAll("BCD"));
}

TEST_F(ConnectionTable, CountsOfOpensWrapWhenClosedToo) {
    open("A");
    m_table.findById(0)->setRefCount(INT32_MIN);
    EXPECT_FALSE(close(0));
    EXPECT_EQ(INT32_MAX, countOf(0));
}

TEST_F(ConnectionTable, LoadedNumbersAtTheirLimitsWrap) {
    load(
        "0100 FFFF DF07 0E00 'NySeConnection' FFFEFF01 4100 00000000 FFFFFF7F"
        "FFFFFF7F 0000");
    EXPECT_EQ((Ids{0, INT32_MIN}), openAll("AB"));
    EXPECT_EQ(INT32_MIN, countOf(0));
}

// The same table in plain containers.
struct Model {
    std::map<LONG, std::pair<std::string, LONG>> open;
    std::set<LONG> freeIds;
    LONG lastId = -1;

    LONG openConnection(const std::string& text) {
        for (auto& [id, entry] : open) {
            if (CString(entry.first.c_str()).CompareNoCase(CString(text.c_str())) == 0) {
                return ++entry.second, id;
            }
        }
        const LONG id = freeIds.empty() ? ++lastId : *freeIds.begin();
        freeIds.erase(id);
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
    void expectSame(const NySeConnectionArray& table) const {
        ASSERT_EQ(static_cast<INT_PTR>(open.size()), table.GetSize());
        INT_PTR i = 0;
        for (const auto& [id, entry] : open) {
            const NySeConnection* const one = table.findById(id);
            ASSERT_EQ(i, table.lookForId(id));
            ASSERT_EQ(table.GetAt(i++), one);
            ASSERT_EQ(id, one->getId());
            ASSERT_EQ(entry.second, one->getRefCount());
            ASSERT_EQ(CString(entry.first.c_str()), one->getStrConnection());
        }
        for (const LONG id : {LONG{-1}, lastId + 1}) {
            ASSERT_EQ(nullptr, table.findById(id));
            ASSERT_EQ(-1, table.lookForId(id));
        }
    }
};

TEST_F(ConnectionTable, AgreesWithAPlainModelOnRandomUse) {
    constexpr unsigned kSeed = 20150713;
    SCOPED_TRACE(::testing::Message() << "seed " << kSeed);
    std::mt19937 random(kSeed);
    Model model;
    for (int i = 0; i < 10000; ++i) {
        if (random() % 2 == 0) {
            const std::string text =
                (random() % 2 == 0 ? "c" : "C") + std::to_string(random() % 40);
            ASSERT_EQ(model.openConnection(text), open(text.c_str())) << i;
        } else {
            const LONG id = static_cast<LONG>(random() % 42) - 1;
            ASSERT_EQ(model.closeConnection(id), close(id)) << i;
        }
        ASSERT_NO_FATAL_FAILURE(model.expectSame(m_table)) << i;
    }
}

}  // namespace
