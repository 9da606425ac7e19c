#include "QoObject2.h"

#include <gtest/gtest.h>

#include "tests/base_qo/CountedFixture.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/SlotOrder.h"

namespace {

class QoObject2Test : public CountedFixture {};

TEST_F(QoObject2Test, TextIsTheClassNameUnlessAClassAddsToIt) {
    EXPECT_EQ(CString("Stranger"), Stranger().toString(0));
    EXPECT_EQ(CString("5"), Counted(5).toString(0));
}

TEST_F(QoObject2Test, ComparesEqualOnlyWithItself) {
    const Stranger one;
    const Stranger other;
    EXPECT_EQ(QoSort::equal, one.vCompareTo(one, 1));
    EXPECT_EQ(QoSort::equal, one.vCompareTo(one, -77));
    EXPECT_EQ(QoSort::noOrder, one.vCompareTo(other, 1));
    EXPECT_EQ(QoSort::noOrder, one.vCompareTo(Counted(), 1));
}

TEST_F(QoObject2Test, CopyOfAnotherKindCopiesNothing) {
    Stranger one;
    EXPECT_EQ(&one, &one.vCopyFrom(Counted(3)));
}

TEST_F(QoObject2Test, IsDerivedDirectlyFromTheRootOfObjects) {
    EXPECT_STREQ("QoObject2", RUNTIME_CLASS(QoObject2)->m_lpszClassName);
    EXPECT_EQ(RUNTIME_CLASS(CObject), RUNTIME_CLASS(QoObject2)->m_pfnGetBaseClass());
    EXPECT_FALSE(RUNTIME_CLASS(QoObject2)->IsSerializable());
    EXPECT_EQ(nullptr, RUNTIME_CLASS(QoObject2)->CreateObject());
    EXPECT_EQ(RUNTIME_CLASS(CObArray), RUNTIME_CLASS(QoArraySerial2)->m_pfnGetBaseClass());
}

TEST(CompareResult, HasItsNumbers) {
    EXPECT_EQ(-2, QoSort::noOrder);
    EXPECT_EQ(-1, QoSort::before);
    EXPECT_EQ(0, QoSort::equal);
    EXPECT_EQ(1, QoSort::after);
    EXPECT_EQ(4u, sizeof(QoSort::CompareResult));
}

// The destructor has slots 1 and 2.
TEST(SlotOrder, OfRecordsStartsWithTheClassLibrarys) {
    EXPECT_EQ(0u, slotOf(&QoObject2::GetRuntimeClass));
    EXPECT_EQ(3u, slotOf(&QoObject2::Serialize));
    EXPECT_EQ(4u, slotOf(&QoObject2::AssertValid));
    EXPECT_EQ(5u, slotOf(&QoObject2::Dump));
    EXPECT_EQ(6u, slotOf(&QoObject2::toString));
    EXPECT_EQ(7u, slotOf(&QoObject2::vClone));
    EXPECT_EQ(8u, slotOf(&QoObject2::vCopyFrom));
    EXPECT_EQ(9u, slotOf(&QoObject2::vCompareTo));
}

TEST(SlotOrder, OfRecordTablesStartsWithTheClassLibrarys) {
    using Table = QoArraySerial2;
    EXPECT_EQ(0u, slotOf(&Table::GetRuntimeClass));
    EXPECT_EQ(3u, slotOf(&Table::Serialize));
    EXPECT_EQ(4u, slotOf(&Table::AssertValid));
    EXPECT_EQ(5u, slotOf(&Table::Dump));
    EXPECT_EQ(6u, slotOf(&Table::vCompareTo));
    EXPECT_EQ(7u, slotOf(&Table::vCopyFrom));
    EXPECT_EQ(8u, slotOf(&Table::toString));
    EXPECT_EQ(9u, slotOf(&Table::GetSize));
    EXPECT_EQ(10u, slotOf(&Table::RemoveAll));
    EXPECT_EQ(11u, slotOf(&Table::onEndSearchIfSorted));
}

}  // namespace
