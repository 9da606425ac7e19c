// Order, search and text. Who owns what is in QoArray2OwnershipTest.cpp.
#include "QoArray2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/base_qo/CountedFixture.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

class QoArray2Test : public CountedFixture {
  protected:
    CountedTable m_table;

    INT_PTR add(int number, int group = 0) { return m_table.add(new Counted(number, group)); }
    INT_PTR append(int number, int group = 0) { return m_table.append(new Counted(number, group)); }
    // Where a record of these fields is found under the key.
    INT_PTR found(short key, int number, int group = 0) const {
        const Counted probe(number, group);
        const INT_PTR index = m_table.lookFor(&probe, key);
        EXPECT_EQ(index < 0 ? nullptr : m_table.at(index), m_table.find(&probe, key));
        return index;
    }
};

TEST_F(QoArray2Test, AgreesWithASortedVectorOnRandomUse) {
    std::mt19937 random(20150717);
    for (const short key : {1, 2}) {
        m_table.RemoveAll();
        m_table.setSortCriteria(key, true);
        const auto keyOf = [key](const auto& one) { return key == 1 ? one.first : one.second; };
        Pairs model;
        for (int i = 0; i < 2000; ++i) {
            const std::pair<int, int> one(random() % 20, random() % 20);
            const Counted probe(one.first, one.second);
            const auto [first, last] = std::equal_range(
                model.begin(), model.end(), one,
                [&](const auto& left, const auto& right) { return keyOf(left) < keyOf(right); });
            const INT_PTR before = first - model.begin();
            const INT_PTR after = last - model.begin();
            ASSERT_EQ(before, m_table.searchIfSorted(&probe, false));
            ASSERT_EQ(after, m_table.searchIfSorted(&probe, true));
            ASSERT_EQ(before < after ? before : -1, found(key, one.first, one.second));
            if (before < after && random() % 2 == 0) {
                m_table.RemoveAt(before);
                model.erase(first);
            } else {
                ASSERT_EQ(after, add(one.first, one.second));
                model.insert(last, one);
            }
            ASSERT_EQ(model, pairsOf(m_table));
        }
    }
}

TEST_F(QoArray2Test, AppendIgnoresTheOrderAsAddDoesWithoutSortCriteria) {
    EXPECT_EQ(0, append(5));
    EXPECT_EQ(1, append(1));
    m_table.setSortCriteria(1, false);
    EXPECT_EQ(2, add(3));
    EXPECT_EQ((Numbers{5, 1, 3}), numbersOf(m_table));
}

TEST_F(QoArray2Test, SearchesTheFirstMatchInIndexOrderWhateverTheOrder) {
    EXPECT_EQ(-1, found(1, 4));
    for (const int number : {9, 4, 9, 1, 4}) append(number, 100 - number);
    EXPECT_EQ(0, found(1, 9));
    EXPECT_EQ(1, found(1, 4));
    EXPECT_EQ(-1, found(1, 5));
    EXPECT_EQ(-1, found(99, 9));
}

struct SearchEnd {
    int probe;
    bool afterEqual;
    INT_PTR index;
    QoSort::CompareResult result;
    bool operator==(const SearchEnd&) const = default;
};

class SearchSpy : public CountedTable {
  public:
    using CountedTable::CountedTable;

    void onEndSearchIfSorted(const QoObject2& probe, bool afterEqual, INT_PTR& index,
                             QoSort::CompareResult& result) const override {
        const int number = static_cast<const Counted&>(probe).m_number;
        m_ends.push_back({number, afterEqual, index, result});
        if (m_answer >= 0) index = m_answer;
    }

    mutable std::vector<SearchEnd> m_ends;
    INT_PTR m_answer = -1;
};

TEST_F(QoArray2Test, SortedSearchReportsItsEnd) {
    const std::vector<SearchEnd> ends = {{3, false, 1, QoSort::before},
                                         {4, false, 1, QoSort::equal},
                                         {4, true, 2, QoSort::noOrder},
                                         {5, true, 2, QoSort::noOrder}};
    const SearchSpy table({2, 4});
    for (const SearchEnd& end : ends) {
        const Counted probe(end.probe);
        table.searchIfSorted(&probe, end.afterEqual);
    }
    EXPECT_EQ(ends, table.m_ends);
}

TEST_F(QoArray2Test, DerivedTablesMayChangeWhatASortedSearchFound) {
    SearchSpy table({2, 4});
    table.m_answer = 0;
    EXPECT_EQ(0, table.add(new Counted(9)));
    EXPECT_EQ((Numbers{9, 2, 4}), numbersOf(table));
    EXPECT_EQ(1u, table.m_ends.size());
}

TEST_F(QoArray2Test, ComparesByTheFirstDifferenceThenByLength) {
    const CountedTable shorter({1, 2});
    const CountedTable longer({1, 2, 3});
    const CountedTable different({1, 9});
    EXPECT_EQ(QoSort::equal, shorter.vCompareTo(shorter, 1));
    EXPECT_EQ(QoSort::equal, shorter.vCompareTo(CountedTable(shorter), 1));
    EXPECT_EQ(QoSort::before, shorter.vCompareTo(longer, 1));
    EXPECT_EQ(QoSort::after, longer.vCompareTo(shorter, 1));
    EXPECT_EQ(QoSort::before, longer.vCompareTo(different, 1));
    EXPECT_EQ(QoSort::noOrder, longer.vCompareTo(different, 99));
}

TEST_F(QoArray2Test, TextJoinsTheElementsUpToALimit) {
    const auto text = [table = CountedTable({1, 2, 3})](short format, int maxCount) {
        return table.toString(format, CString(", "), maxCount, CString("..."));
    };
    EXPECT_EQ(CString("1, 2, 3"), text(0, -1));
    EXPECT_EQ(CString("1, 2, 3"), text(0, 3));
    EXPECT_EQ(CString("1, 2..."), text(0, 2));
    EXPECT_EQ(CString("..."), text(0, 0));
    EXPECT_EQ(CString("1!, 2!, 3!"), text(1, 9));
    EXPECT_EQ(CString(), CountedTable().toString(0, CString(", "), 0, CString("...")));
}

TEST_F(QoArray2Test, IndicesOutsideTheArrayAreRefused) {
    CountedTable table({1, 2, 3});
    const auto refuses = [](auto action) { return throwsA<CInvalidArgException>(action); };
    const std::pair<INT_PTR, INT_PTR> outside[] = {{-1, 1}, {0, -1}, {3, 1},
                                                   {2, 2},  {4, 0},  {1, INTPTR_MAX}};
    for (const auto& [index, count] : outside) {
        EXPECT_TRUE(refuses([&, index = index, count = count] { table.RemoveAt(index, count); }));
    }
    EXPECT_TRUE(refuses([&] { table.GetAt(3); }));
    EXPECT_TRUE(refuses([&] { table.ElementAt(-1); }));
    EXPECT_TRUE(refuses([&] { table[3]; }));
    EXPECT_EQ((Numbers{1, 2, 3}), numbersOf(table));
    EXPECT_EQ(0, Counted::deleted);
    table.RemoveAt(3, 0);
    table.RemoveAt(0, 2);
    EXPECT_EQ((Numbers{3}), numbersOf(table));
}

}  // namespace
