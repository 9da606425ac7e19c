// What the window shows, without a window.
#include <gmock/gmock.h>

#include "apps/monitor/Layout.h"
#include "apps/monitor/Log.h"
#include "apps/monitor/ReconnectDelay.h"
#include "apps/monitor/ServerRows.h"
#include "apps/monitor/Words.h"
#include "tests/monitor/Tidy.h"

using namespace apps::monitor;

namespace {

using ::testing::ElementsAre;
using Keys = std::vector<std::wstring>;

// Three rows; what is shown of them, by their keys.
class MonitorTable : public ::testing::Test {
  protected:
    MonitorTable() {
        table.setRows(
            {{L"k1", {L"bob", L"10"}}, {L"k2", {L"Anna", L"9"}}, {L"k3", {L"carl", L"10"}}});
    }
    Keys shown() const {
        Keys keys;
        for (int i = 0; i < table.count(); ++i) keys.push_back(table.at(i).key);
        return keys;
    }
    Keys sorted(int column) {
        table.sortBy(column);
        return shown();
    }
    Keys filtered(const wchar_t* text) {
        table.setFilter(text);
        return shown();
    }

    Table table{{{L"Name", 10}, {L"Number", 10, true}}};
};

TEST_F(MonitorTable, IsOrderedByTheFirstColumnWithoutLetterCaseAndMayBeReversed) {
    EXPECT_THAT(shown(), ElementsAre(L"k2", L"k1", L"k3"));
    EXPECT_THAT(sorted(0), ElementsAre(L"k3", L"k1", L"k2"));
    EXPECT_FALSE(table.isAscending());
    table.sortBy(1);
    EXPECT_TRUE(table.isAscending());
}

TEST_F(MonitorTable, OrdersNumbersByTheirValueAndEqualOnesByTheirKeys) {
    EXPECT_THAT(sorted(1), ElementsAre(L"k2", L"k1", L"k3"));
    EXPECT_THAT(sorted(1), ElementsAre(L"k1", L"k3", L"k2"));
}

TEST_F(MonitorTable, ShowsTheRowsThatHaveTheTextInAnyCell) {
    EXPECT_THAT(filtered(L"AN"), ElementsAre(L"k2"));
    EXPECT_THAT(filtered(L"10"), ElementsAre(L"k1", L"k3"));
    EXPECT_THAT(filtered(L"bob10"), ElementsAre());
    EXPECT_EQ(3, table.total());
    EXPECT_EQ(L"k3", table.any(2).key);  // also what is not shown
    EXPECT_EQ(3U, filtered(L"").size());
}

TEST_F(MonitorTable, LetterCaseIsThatOfAllAlphabets) {
    table.setRows({{L"k1", {L"zo\u00CB", L"1"}}, {L"k2", {L"Zo\u00EB", L"2"}}});
    EXPECT_EQ(2U, filtered(L"ZO\u00EB").size());
}

TEST_F(MonitorTable, KeepsOrderAndFilterForNewRows) {
    table.sortBy(0);
    table.setFilter(L"a");
    table.setRows({{L"x", {L"a1", L"0"}}, {L"y", {L"a2", L"0"}}, {L"z", {L"b", L"0"}}});
    EXPECT_THAT(shown(), ElementsAre(L"y", L"x"));
}

TEST_F(MonitorTable, FindsAShownRowByItsKey) {
    EXPECT_EQ(1, table.find(L"k1"));
    table.setFilter(L"anna");
    EXPECT_EQ(0, table.find(L"k2"));
    EXPECT_EQ(-1, table.find(L"k1"));
}

TEST(MonitorRows, ALockNamesItsHoldersAndTheirModes) {
    NySeUserPtrArray users;
    auto* const anna = new NySeUser;
    anna->setStrUserName("anna");
    anna->setSessionNumber(1);
    users.Add(anna);
    NySeUser stranger;
    stranger.setSessionNumber(7);
    NySeLockArray locks;
    locks.addLock("part", *anna, 0x01);
    locks.addLock("part", stranger, 0x10);
    locks.addLock("alone", stranger, 0);
    const std::vector<Row> rows = lockRows(locks, users);
    ASSERT_EQ(2U, rows.size());
    EXPECT_EQ(L"part", rows[0].key);
    EXPECT_THAT(rows[0].cells, ElementsAre(L"part", L"anna, session 7", L"access1, exclude2"));
    EXPECT_THAT(rows[1].cells, ElementsAre(L"alone", L"session 7", L"none"));
    EXPECT_EQ(lockColumns().size(), rows[0].cells.size());
    EXPECT_EQ(userColumns().size(), userRows(users)[0].cells.size());
}

TEST(MonitorReconnectDelay, GrowsUpToHalfAMinute) {
    ReconnectDelay delay;
    for (const int seconds : {1, 2, 4, 8, 16, 30, 30})
        EXPECT_EQ(std::chrono::seconds(seconds), delay.next());
    delay.reset();
    EXPECT_EQ(std::chrono::seconds(1), delay.next());
}

TEST(MonitorLog, ForgetsTheOldestLines) {
    Log log;
    for (size_t i = 0; i < Log::kMostLines + 2; ++i) log.add({L"", std::to_wstring(i), L""});
    EXPECT_EQ(static_cast<int>(Log::kMostLines), log.count());
    EXPECT_EQ(L"2", log.at(0).event);
    EXPECT_EQ(std::to_wstring(Log::kMostLines + 1), log.at(log.count() - 1).event);
}

TEST(MonitorWords, AreThoseOfTheWindow) {
    EXPECT_EQ(L"Posted 3 of 9", words::posted({3, 9, false}));
    EXPECT_EQ(L"Reading", words::flow({3, 9, false}));
    EXPECT_EQ(L"Paused", words::flow({3, 9, true}));
    EXPECT_EQ(L"Users (3)", words::counted(L"Users", 3, 3));
    EXPECT_EQ(L"Users (0 of 3)", words::counted(L"Users", 0, 3));
    EXPECT_EQ(L"The connection to the server was lost. Trying again in 2 s",
              words::waiting(words::connectionLost(), std::chrono::milliseconds(1001)));
}

void expectTidyLayout(const LayoutInput& input) {
    const Layout layout = layOut(input);
    std::vector<RECT> parts{layout.filterLabel, layout.filter, layout.logTitle, layout.log};
    parts.insert(parts.end(), layout.buttons.begin(), layout.buttons.end());
    parts.insert(parts.end(), layout.titles.begin(), layout.titles.end());
    parts.insert(parts.end(), layout.lists.begin(), layout.lists.end());
    expectTidy(parts, {0, 0, input.width, input.height});
}

TEST(MonitorLayoutRules, NothingOverlapsInTheSmallestWindow) {
    for (const int dpi : {96, 120, 144, 192}) {
        const int textHeight = scaled(14, dpi);
        const SIZE smallest = smallestClient(dpi, textHeight);
        expectTidyLayout({smallest.cx, smallest.cy, dpi, textHeight});
        expectTidyLayout({2 * smallest.cx, 3 * smallest.cy, dpi, textHeight});
    }
}

TEST(MonitorLayoutRules, AWindowIsHeldWithinTheScreen) {
    const RECT screen{0, 40, 1400, 1000};
    for (const auto& [held, area] :
         {std::pair<RECT, RECT>{{100, 100, 1120, 740}, {100, 100, 1120, 740}},
          {{380, 360, 1400, 1000}, {700, 900, 1720, 1540}},
          {{0, 40, 1020, 680}, {-9, -9, 1011, 631}},
          {screen, {100, 100, 2140, 1380}}}) {
        const RECT found = within(area, screen);
        EXPECT_TRUE(::EqualRect(&held, &found)) << area.left << ": " << found.left;
    }
}

}  // namespace
