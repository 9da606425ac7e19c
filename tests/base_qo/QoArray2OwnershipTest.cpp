#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "tests/base_qo/CountedFixture.h"

namespace {

constexpr unsigned long kDoNotDelete = QoArraySerial2::kDoNotDelete;

class QoArray2Ownership : public CountedFixture {
  protected:
    // Records of their own, and a table that only points to them.
    std::vector<std::unique_ptr<Counted>> m_owned;
    CountedTable m_view{kDoNotDelete};

    void lend(const Numbers& numbers) {
        for (const int number : numbers) {
            m_owned.push_back(std::make_unique<Counted>(number));
            m_view.append(m_owned.back().get());
        }
    }
    // That `table` owns clones of the records of `source`, or shares them with it.
    static void expectCopies(const CountedTable& source, const CountedTable& table, bool ofOwner) {
        EXPECT_EQ(ofOwner, table.getDeleteObject());
        EXPECT_EQ(numbersOf(source), numbersOf(table));
        EXPECT_EQ(ofOwner, source.at(0) != table.at(0));
    }
};

TEST_F(QoArray2Ownership, IsSetInTheFlagWord) {
    EXPECT_EQ(0x10000ul, kDoNotDelete);
    EXPECT_TRUE(QoArraySerial2().getDeleteObject());
    for (const unsigned long flags : {0x0ul, 0x1ul, 0x10000ul, 0x10001ul}) {
        EXPECT_EQ(flags < kDoNotDelete, CountedTable(flags).getDeleteObject()) << flags;
    }
}

TEST_F(QoArray2Ownership, OwnersDeleteWhatTheyRemove) {
    CountedTable table({1, 2, 3, 4});
    table.RemoveAt(1, 2);
    EXPECT_EQ(2, Counted::deleted);
    EXPECT_EQ((Numbers{1, 4}), numbersOf(table));
    table.RemoveAt(0);
    EXPECT_EQ(3, Counted::deleted);
    table.RemoveAll();
    EXPECT_EQ(4, Counted::deleted);
    EXPECT_EQ(0, table.GetSize());
}

TEST_F(QoArray2Ownership, OwnersDeleteTheRestWhenTheyAreDestroyed) {
    CountedTable({1, 2, 3});
    EXPECT_EQ(3, Counted::deleted);
}

TEST_F(QoArray2Ownership, OthersDeleteNothing) {
    lend({1, 2, 3, 4});
    m_view.RemoveAt(0, 2);
    m_view.RemoveAll();
    CountedTable(kDoNotDelete).append(m_owned[0].get());
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArray2Ownership, MayBeChanged) {
    CountedTable table({1, 2});
    table.RemoveAt(0);
    EXPECT_EQ(1, Counted::deleted);
    const std::unique_ptr<Counted> kept(table.at(0));
    table.setDeleteObject(false);
    table.RemoveAll();
    EXPECT_EQ(1, Counted::deleted);
    table.setDeleteObject(true);
    EXPECT_TRUE(table.getDeleteObject());
}

TEST_F(QoArray2Ownership, CopyOfAnOwnerOwnsClonesAndThatOfAViewIsAView) {
    const CountedTable table({3, 1});
    expectCopies(table, CountedTable(table), true);
    EXPECT_EQ(2, Counted::deleted);
    EXPECT_EQ((Numbers{3, 1}), numbersOf(table));
    lend({3, 1});
    expectCopies(m_view, CountedTable(m_view), false);
    EXPECT_EQ(2, Counted::deleted);
}

TEST_F(QoArray2Ownership, CopyTakesTheSortCriteria) {
    CountedTable table;
    table.setSortCriteria(2, true);
    CountedTable copy(table);
    CountedTable assigned;
    assigned = table;
    for (CountedTable* target : {&copy, &assigned}) {
        target->add(new Counted(1, 20));
        target->add(new Counted(2, 10));
        EXPECT_EQ((Numbers{2, 1}), numbersOf(*target));
    }
}

TEST_F(QoArray2Ownership, AssignmentReplacesAndKeepsTheFlagOfTheTarget) {
    lend({5, 6});
    CountedTable owner({1, 2, 3});
    owner = m_view;
    EXPECT_EQ(3, Counted::deleted);
    expectCopies(m_view, owner, true);
    CountedTable view(kDoNotDelete);
    view = owner;
    expectCopies(owner, view, false);
    CountedTable copy;
    EXPECT_EQ(&copy, &copy.vCopyFrom(owner));
    expectCopies(owner, copy, true);
}

TEST_F(QoArray2Ownership, AssignmentToItselfChangesNothing) {
    CountedTable table({1, 2});
    const CountedTable& same = table;
    const Counted* first = table.at(0);
    table = same;
    EXPECT_EQ(first, table.at(0));
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArray2Ownership, OwnerTakesOverAViewOfItself) {
    CountedTable owner({1, 2, 3});
    CountedTable view(kDoNotDelete);
    view.append(owner.at(2));
    view.append(owner.at(0));
    owner = view;
    EXPECT_EQ((Numbers{3, 1}), numbersOf(owner));
    EXPECT_EQ(2, Counted::alive);
}

TEST_F(QoArray2Ownership, AddFromAppendsClonesToAnOwnerAndMaySort) {
    const CountedTable table({4, 2});
    CountedTable target(Numbers{3});
    target.addFrom(table);
    EXPECT_EQ((Numbers{3, 4, 2}), numbersOf(target));
    EXPECT_EQ(5, Counted::alive);
    target.addFrom(table, false);
    EXPECT_EQ((Numbers{3, 4, 2, 4, 2}), numbersOf(target));
    CountedTable sorted(Numbers{3});
    sorted.addFrom(table, true);
    EXPECT_EQ((Numbers{2, 3, 4}), numbersOf(sorted));
}

TEST_F(QoArray2Ownership, AddFromSharesWithAView) {
    const CountedTable table({4, 2});
    m_view.addFrom(table);
    EXPECT_EQ(table.at(0), m_view.at(0));
    EXPECT_EQ(table.at(1), m_view.at(1));
}

TEST_F(QoArray2Ownership, AddFromItselfDoublesEachElement) {
    CountedTable sorted({1, 2});
    sorted.addFrom(sorted, true);
    EXPECT_EQ((Numbers{1, 1, 2, 2}), numbersOf(sorted));
    CountedTable unsorted({1, 2});
    unsorted.addFrom(unsorted);
    EXPECT_EQ((Numbers{1, 2, 1, 2}), numbersOf(unsorted));
}

TEST_F(QoArray2Ownership, NullElementsStayNullInCopies) {
    CountedTable table;
    table.append(nullptr);
    table.append(new Counted(1));
    const CountedTable copy(table);
    EXPECT_EQ(nullptr, copy.at(0));
    EXPECT_EQ(1, copy.at(1)->m_number);
}

TEST_F(QoArray2Ownership, CopyWithoutMemoryForAnElementChangesNothing) {
    const CountedTable table({1, 2, 3});
    CountedTable target(Numbers{7});
    Counted::clonesLeft = 2;
    EXPECT_THROW(target = table, std::bad_alloc);
    Counted::clonesLeft = 2;
    EXPECT_THROW(target.addFrom(table, true), std::bad_alloc);
    Counted::clonesLeft = 2;
    EXPECT_THROW(CountedTable copy(table), std::bad_alloc);
    EXPECT_EQ((Numbers{7}), numbersOf(target));
    EXPECT_EQ(4, Counted::alive);
}

}  // namespace
