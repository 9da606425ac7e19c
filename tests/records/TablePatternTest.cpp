// What every table of records does alike.
#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"

namespace {

template <class Table>
class TablePattern : public ::testing::Test {
  protected:
    using Record = std::remove_pointer_t<decltype(std::declval<const Table>().GetAt(0))>;

    static Record* makeFirst() { return makeSample<Record>().clone(); }
    static Record* makeSecond() {
        Record* record = makeFirst();
        putBehind(*record);
        return record;
    }
    static void fill(Table& table) {
        EXPECT_EQ(0, table.append(makeSecond()));
        EXPECT_EQ(1, table.append(makeFirst()));
    }
    static Bytes fieldsOf(const Table& table) {
        return stored([&](CArchive& ar) { const_cast<Table&>(table).Serialize(ar); });
    }
};

using Tables =
    ::testing::Types<NySeUserPtrArray, NySeConnectionArray, NySeSessionLockPtrArray, NySeLockArray>;
TYPED_TEST_SUITE(TablePattern, Tables);

TYPED_TEST(TablePattern, OwnsItsRecordsByDefault) {
    EXPECT_TRUE(TypeParam().getDeleteObject());
    EXPECT_TRUE(TypeParam(0).getDeleteObject());
    EXPECT_FALSE(TypeParam(0x10000).getDeleteObject());
}

TYPED_TEST(TablePattern, SortsByKeyOneHoweverItWasCreated) {
    TypeParam byDefault;
    TypeParam withFlags(0);
    const TypeParam source;
    TypeParam copied(source);
    for (TypeParam* table : {&byDefault, &withFlags, &copied}) {
        EXPECT_EQ(0, table->add(this->makeSecond()));
        EXPECT_EQ(0, table->add(this->makeFirst()));
    }
}

TYPED_TEST(TablePattern, ReturnsItsRecordsByTheirType) {
    TypeParam table;
    this->fill(table);
    const TypeParam& constant = table;
    static_assert(std::is_same_v<decltype(constant.GetAt(0)), typename TestFixture::Record*>);
    static_assert(std::is_same_v<decltype(table.ElementAt(0)), typename TestFixture::Record*>);
    static_assert(std::is_same_v<decltype(table[0]), typename TestFixture::Record*>);
    EXPECT_NE(nullptr, constant.GetAt(1));
    EXPECT_EQ(constant.GetAt(1), table.ElementAt(1));
    EXPECT_EQ(constant.GetAt(1), table[1]);
}

TYPED_TEST(TablePattern, CopiesHoldClones) {
    TypeParam table;
    this->fill(table);
    const TypeParam copy(table);
    TypeParam assigned;
    this->fill(assigned);
    EXPECT_EQ(&assigned, &(assigned = table));
    const std::unique_ptr<TypeParam> clone(table.clone());
    EXPECT_EQ(TypeParam::GetThisClass(), clone->GetRuntimeClass());
    TypeParam taken;
    taken.append(this->makeSecond());
    QoArray2<CObArray, QoObject2>& base = taken;
    EXPECT_EQ(&base, &base.vCopyFrom(table));
    for (const TypeParam* one :
         std::initializer_list<const TypeParam*>{&copy, &assigned, clone.get(), &taken}) {
        ASSERT_EQ(2, one->GetSize());
        EXPECT_NE(table.GetAt(0), one->GetAt(0));
        EXPECT_EQ(QoSort::equal, table.vCompareTo(*one, 1));
        EXPECT_EQ(toHex(this->fieldsOf(copy)), toHex(this->fieldsOf(*one)));
    }
}

}  // namespace
