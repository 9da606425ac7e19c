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
};

TEST_F(QoArray2Ownership, IsSaidByTheFlagWord) {
    EXPECT_EQ(0x10000ul, kDoNotDelete);
    EXPECT_TRUE(QoArraySerial2().getDeleteObject());
    EXPECT_TRUE(CountedTable(0).getDeleteObject());
    EXPECT_TRUE(CountedTable(0x1).getDeleteObject());
    EXPECT_FALSE(CountedTable(0x10000).getDeleteObject());
    EXPECT_FALSE(CountedTable(0x10001).getDeleteObject());
}

TEST_F(QoArray2Ownership, OwnersDeleteWhatTheyRemove) {
    CountedTable table;
    appendAll(table, {1, 2, 3, 4});
    table.RemoveAt(1, 2);
    EXPECT_EQ(2, Counted::deleted);
    EXPECT_EQ((Numbers{1, 4}), numbersOf(table));
    table.RemoveAt(0);
    EXPECT_EQ(3, Counted::deleted);
    table.RemoveAll();
    EXPECT_EQ(4, Counted::deleted);
    EXPECT_EQ(0, table.GetSize());
}

TEST_F(QoArray2Ownership, OwnersDeleteTheRestWhenTheyGo) {
    {
        CountedTable table;
        appendAll(table, {1, 2, 3});
    }
    EXPECT_EQ(3, Counted::deleted);
}

TEST_F(QoArray2Ownership, OthersDeleteNothing) {
    lend({1, 2, 3, 4});
    m_view.RemoveAt(0, 2);
    m_view.RemoveAll();
    {
        CountedTable view(kDoNotDelete);
        view.append(m_owned[0].get());
    }
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArray2Ownership, MayChangeHands) {
    CountedTable table(kDoNotDelete);
    appendAll(table, {1, 2});
    table.setDeleteObject(true);
    EXPECT_TRUE(table.getDeleteObject());
    table.RemoveAt(0);
    EXPECT_EQ(1, Counted::deleted);
    const std::unique_ptr<Counted> kept(table.at(0));
    table.setDeleteObject(false);
    table.RemoveAll();
    EXPECT_EQ(1, Counted::deleted);
}

TEST_F(QoArray2Ownership, CopyOfAnOwnerOwnsClones) {
    CountedTable table;
    appendAll(table, {3, 1});
    {
        CountedTable copy(table);
        EXPECT_TRUE(copy.getDeleteObject());
        EXPECT_EQ((Numbers{3, 1}), numbersOf(copy));
        EXPECT_NE(table.at(0), copy.at(0));
    }
    EXPECT_EQ(2, Counted::deleted);
    EXPECT_EQ((Numbers{3, 1}), numbersOf(table));
}

TEST_F(QoArray2Ownership, CopyOfAViewIsAView) {
    lend({3, 1});
    const CountedTable copy(m_view);
    EXPECT_FALSE(copy.getDeleteObject());
    EXPECT_EQ(m_view.at(0), copy.at(0));
    EXPECT_EQ(2, Counted::alive);
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
    CountedTable owner;
    appendAll(owner, {1, 2, 3});
    owner = m_view;
    EXPECT_EQ(3, Counted::deleted);
    EXPECT_TRUE(owner.getDeleteObject());
    EXPECT_EQ((Numbers{5, 6}), numbersOf(owner));
    EXPECT_NE(m_view.at(0), owner.at(0));

    CountedTable view(kDoNotDelete);
    view = owner;
    EXPECT_FALSE(view.getDeleteObject());
    EXPECT_EQ(owner.at(0), view.at(0));
}

TEST_F(QoArray2Ownership, AssignmentToItselfChangesNothing) {
    CountedTable table;
    appendAll(table, {1, 2});
    const CountedTable& same = table;
    const Counted* first = table.at(0);
    table = same;
    EXPECT_EQ(first, table.at(0));
    EXPECT_EQ(0, Counted::deleted);
}

TEST_F(QoArray2Ownership, OwnerTakesOverAViewOfItself) {
    CountedTable owner;
    appendAll(owner, {1, 2, 3});
    CountedTable view(kDoNotDelete);
    view.append(owner.at(2));
    view.append(owner.at(0));
    owner = view;
    EXPECT_EQ((Numbers{3, 1}), numbersOf(owner));
    EXPECT_EQ(2, Counted::alive);
}

TEST_F(QoArray2Ownership, CopyFromIsAssignment) {
    CountedTable table;
    appendAll(table, {1, 2});
    CountedTable copy;
    EXPECT_EQ(&copy, &copy.vCopyFrom(table));
    EXPECT_EQ((Numbers{1, 2}), numbersOf(copy));
    EXPECT_NE(table.at(0), copy.at(0));
}

TEST_F(QoArray2Ownership, AddFromAppendsClonesToAnOwner) {
    CountedTable table;
    CountedTable target;
    appendAll(table, {4, 2});
    appendAll(target, {3});
    target.addFrom(table);
    EXPECT_EQ((Numbers{3, 4, 2}), numbersOf(target));
    EXPECT_EQ(5, Counted::alive);
    target.addFrom(table, false);
    EXPECT_EQ((Numbers{3, 4, 2, 4, 2}), numbersOf(target));
}

TEST_F(QoArray2Ownership, AddFromSharesWithAView) {
    CountedTable table;
    appendAll(table, {4, 2});
    CountedTable view(kDoNotDelete);
    view.addFrom(table);
    EXPECT_EQ(table.at(0), view.at(0));
    EXPECT_EQ(table.at(1), view.at(1));
}

TEST_F(QoArray2Ownership, AddFromMaySort) {
    CountedTable table;
    CountedTable target;
    appendAll(table, {4, 2});
    appendAll(target, {3});
    target.addFrom(table, true);
    EXPECT_EQ((Numbers{2, 3, 4}), numbersOf(target));
}

TEST_F(QoArray2Ownership, AddFromItselfDoublesEachElement) {
    CountedTable sorted;
    appendAll(sorted, {1, 2});
    sorted.addFrom(sorted, true);
    EXPECT_EQ((Numbers{1, 1, 2, 2}), numbersOf(sorted));
    CountedTable unsorted;
    appendAll(unsorted, {1, 2});
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
    CountedTable table;
    CountedTable target;
    appendAll(table, {1, 2, 3});
    appendAll(target, {7});
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
