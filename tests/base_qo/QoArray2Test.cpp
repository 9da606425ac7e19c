// Order, search and text. Who owns what is in QoArray2OwnershipTest.cpp.
#include "QoArray2.h"

#include <gtest/gtest.h>

#include "tests/base_qo/CountedFixture.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

class QoArray2Test : public CountedFixture {};

TEST_F(QoArray2Test, AddInsertsInOrderAndAnswersWithTheIndex) {
    CountedTable table;
    EXPECT_EQ(0, table.add(new Counted(5)));
    EXPECT_EQ(0, table.add(new Counted(1)));
    EXPECT_EQ(1, table.add(new Counted(3)));
    EXPECT_EQ(3, table.add(new Counted(9)));
    EXPECT_EQ((Numbers{1, 3, 5, 9}), numbersOf(table));
}

TEST_F(QoArray2Test, AddGoesBehindThoseThatCompareEqual) {
    CountedTable table;
    for (const int group : {1, 2, 3}) table.add(new Counted(5, group));
    table.add(new Counted(4, 0));
    table.add(new Counted(6, 0));
    EXPECT_EQ(4, table.add(new Counted(5, 4)));
    EXPECT_EQ((Pairs{{4, 0}, {5, 1}, {5, 2}, {5, 3}, {5, 4}, {6, 0}}), pairsOf(table));
}

TEST_F(QoArray2Test, AppendIgnoresTheOrder) {
    CountedTable table;
    EXPECT_EQ(0, table.append(new Counted(5)));
    EXPECT_EQ(1, table.append(new Counted(1)));
    EXPECT_EQ((Numbers{5, 1}), numbersOf(table));
}

TEST_F(QoArray2Test, AddWithoutSortCriteriaAppends) {
    CountedTable table;
    table.setSortCriteria(1, false);
    table.add(new Counted(5));
    EXPECT_EQ(1, table.add(new Counted(1)));
}

TEST_F(QoArray2Test, AddOrdersByTheKeyOfTheCriteria) {
    CountedTable table;
    table.setSortCriteria(2, true);
    table.add(new Counted(1, 20));
    table.add(new Counted(2, 10));
    EXPECT_EQ((Numbers{2, 1}), numbersOf(table));
}

TEST_F(QoArray2Test, SearchesTheFirstMatchInIndexOrderWhateverTheOrder) {
    CountedTable table;
    for (const int number : {9, 4, 9, 1, 4}) table.append(new Counted(number, 100 - number));
    const Counted nine(9);
    const Counted four(4);
    EXPECT_EQ(0, table.lookFor(&nine, 1));
    EXPECT_EQ(1, table.lookFor(&four, 1));
    EXPECT_EQ(table.at(1), table.find(&four, 1));
}

TEST_F(QoArray2Test, SearchUsesTheKeyItIsGiven) {
    CountedTable table;
    table.append(new Counted(1, 7));
    table.append(new Counted(7, 1));
    const Counted probe(7, 7);
    EXPECT_EQ(1, table.lookFor(&probe, 1));
    EXPECT_EQ(0, table.lookFor(&probe, 2));
}

TEST_F(QoArray2Test, SearchWithoutAMatchAnswersMinusOneOrNull) {
    CountedTable table;
    const Counted probe(4);
    EXPECT_EQ(-1, table.lookFor(&probe, 1));
    EXPECT_EQ(nullptr, table.find(&probe, 1));
    appendAll(table, {1, 2});
    EXPECT_EQ(-1, table.lookFor(&probe, 1));
    EXPECT_EQ(nullptr, table.find(&probe, 1));
    EXPECT_EQ(-1, table.lookFor(&probe, 99));
}

TEST_F(QoArray2Test, SortedSearchAnswersWhereAProbeBelongs) {
    CountedTable table;
    appendAll(table, {2, 4, 4, 4, 6});
    const auto before = [&](int number) {
        const Counted probe(number);
        return table.searchIfSorted(&probe, false);
    };
    const auto behind = [&](int number) {
        const Counted probe(number);
        return table.searchIfSorted(&probe, true);
    };
    EXPECT_EQ(0, before(1));
    EXPECT_EQ(0, before(2));
    EXPECT_EQ(1, behind(2));
    EXPECT_EQ(1, before(4));
    EXPECT_EQ(4, behind(4));
    EXPECT_EQ(4, before(5));
    EXPECT_EQ(4, behind(5));
    EXPECT_EQ(5, before(7));
    EXPECT_EQ(5, behind(7));
}

struct SearchEnd {
    int probe;
    bool behindEqual;
    INT_PTR index;
    QoSort::CompareResult result;
    bool operator==(const SearchEnd&) const = default;
};

class SearchSpy : public CountedTable {
  public:
    void onEndSearchIfSorted(const QoObject2& probe, bool behindEqual, INT_PTR& index,
                             QoSort::CompareResult& result) const override {
        const int number = static_cast<const Counted&>(probe).m_number;
        m_ends.push_back({number, behindEqual, index, result});
        if (m_answer >= 0) index = m_answer;
    }

    mutable std::vector<SearchEnd> m_ends;
    INT_PTR m_answer = -1;
};

TEST_F(QoArray2Test, SortedSearchReportsItsEnd) {
    SearchSpy table;
    appendAll(table, {2, 4});
    const Counted three(3);
    const Counted four(4);
    const Counted five(5);
    table.searchIfSorted(&three, false);
    table.searchIfSorted(&four, false);
    table.searchIfSorted(&four, true);
    table.searchIfSorted(&five, true);
    EXPECT_EQ((std::vector<SearchEnd>{{3, false, 1, QoSort::before},
                                      {4, false, 1, QoSort::equal},
                                      {4, true, 2, QoSort::noOrder},
                                      {5, true, 2, QoSort::noOrder}}),
              table.m_ends);
}

TEST_F(QoArray2Test, DerivedTablesMayChangeWhatASortedSearchFound) {
    SearchSpy table;
    appendAll(table, {2, 4});
    table.m_answer = 0;
    EXPECT_EQ(0, table.add(new Counted(9)));
    EXPECT_EQ((Numbers{9, 2, 4}), numbersOf(table));
    EXPECT_EQ(1u, table.m_ends.size());
}

TEST_F(QoArray2Test, ComparesByTheFirstDifferenceThenByLength) {
    CountedTable shorter;
    CountedTable longer;
    CountedTable different;
    appendAll(shorter, {1, 2});
    appendAll(longer, {1, 2, 3});
    appendAll(different, {1, 9});
    EXPECT_EQ(QoSort::equal, shorter.vCompareTo(shorter, 1));
    EXPECT_EQ(QoSort::equal, shorter.vCompareTo(CountedTable(shorter), 1));
    EXPECT_EQ(QoSort::before, shorter.vCompareTo(longer, 1));
    EXPECT_EQ(QoSort::after, longer.vCompareTo(shorter, 1));
    EXPECT_EQ(QoSort::before, longer.vCompareTo(different, 1));
    EXPECT_EQ(QoSort::noOrder, longer.vCompareTo(different, 99));
}

TEST_F(QoArray2Test, TextJoinsTheElementsUpToALimit) {
    CountedTable table;
    appendAll(table, {1, 2, 3});
    const CString comma(", ");
    const CString more("...");
    EXPECT_EQ(CString("1, 2, 3"), table.toString(0, comma, -1, more));
    EXPECT_EQ(CString("1, 2, 3"), table.toString(0, comma, 3, more));
    EXPECT_EQ(CString("1, 2..."), table.toString(0, comma, 2, more));
    EXPECT_EQ(CString("..."), table.toString(0, comma, 0, more));
    EXPECT_EQ(CString("1!, 2!, 3!"), table.toString(1, comma, 9, more));
    EXPECT_EQ(CString(), CountedTable().toString(0, comma, 0, more));
}

TEST_F(QoArray2Test, RemoveAtChecksItsArguments) {
    CountedTable table;
    appendAll(table, {1, 2, 3});
    const auto removeAt = [&](INT_PTR index, INT_PTR count) {
        return throwsA<CInvalidArgException>([&] { table.RemoveAt(index, count); });
    };
    EXPECT_TRUE(removeAt(-1, 1));
    EXPECT_TRUE(removeAt(0, -1));
    EXPECT_TRUE(removeAt(3, 1));
    EXPECT_TRUE(removeAt(2, 2));
    EXPECT_TRUE(removeAt(4, 0));
    EXPECT_TRUE(removeAt(1, INTPTR_MAX));
    EXPECT_EQ((Numbers{1, 2, 3}), numbersOf(table));
    EXPECT_EQ(0, Counted::deleted);
    EXPECT_FALSE(removeAt(3, 0));
    EXPECT_FALSE(removeAt(0, 2));
    EXPECT_EQ((Numbers{3}), numbersOf(table));
}

TEST_F(QoArray2Test, ElementsOutsideTheArrayAreRefused) {
    CountedTable table;
    appendAll(table, {1});
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { table.GetAt(1); }));
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { table.ElementAt(-1); }));
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { table[1]; }));
}

}  // namespace
