// What the objects of every record class do alike.
#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"

namespace {

// Not of any record's kind.
class Foreign : public QoObject2 {
  public:
    QoObject2* vClone() const override { return new Foreign; }
};

template <class Record>
class RecordPattern : public ::testing::Test {
  protected:
    static std::string fieldsOf(const Record& record) {
        return toHex(stored([&](CArchive& ar) { const_cast<Record&>(record).Serialize(ar); }));
    }
    void expectSameFields(std::initializer_list<const Record*> others) const {
        for (const Record* other : others) EXPECT_EQ(fieldsOf(m_record), fieldsOf(*other));
    }

    Record m_record = makeSample<Record>();
    const Record m_same = makeSample<Record>();
};

using Records = ::testing::Types<NySeUser, NySeConnection, NySeSessionLock, NySeLock, NySeMessage>;
TYPED_TEST_SUITE(RecordPattern, Records);

TYPED_TEST(RecordPattern, EqualsItselfUnderEveryKey) {
    for (const short key : {-1, 0, 1, 2, 3, 4, 99}) {
        EXPECT_EQ(QoSort::equal, this->m_record.vCompareTo(this->m_record, key)) << key;
    }
}

TYPED_TEST(RecordPattern, HasNoOrderUnderAnUnknownKeyNorAgainstAnotherKind) {
    for (const short key : {-1, 0, 4, 99}) {
        EXPECT_EQ(QoSort::noOrder, this->m_record.vCompareTo(this->m_same, key)) << key;
    }
    EXPECT_EQ(QoSort::noOrder, this->m_record.vCompareTo(Foreign(), 1));
}

TYPED_TEST(RecordPattern, UnknownKeyLeavesTheResultUnchanged) {
    QoSort::CompareResult result = QoSort::after;
    this->m_record.typeCompareTo(this->m_same, 99, result);
    EXPECT_EQ(QoSort::after, result);
}

TYPED_TEST(RecordPattern, OperatorEqualsMeansTheSameObject) {
    EXPECT_TRUE(this->m_record == this->m_record);
    EXPECT_FALSE(this->m_record == this->m_same);
}

TYPED_TEST(RecordPattern, CastsOnlyItsOwnKind) {
    Foreign foreign;
    EXPECT_EQ(&this->m_record, TypeParam::cast(&this->m_record));
    EXPECT_EQ(nullptr, TypeParam::cast(&foreign));
    EXPECT_EQ(nullptr, TypeParam::cast(nullptr));
}

TYPED_TEST(RecordPattern, CopiesItsFields) {
    EXPECT_NE(this->fieldsOf(TypeParam()), this->fieldsOf(this->m_record));
    const TypeParam copy(this->m_record);
    TypeParam assigned;
    EXPECT_EQ(&assigned, &(assigned = this->m_record));
    TypeParam typed;
    typed.typeCopyFrom(this->m_record);
    TypeParam untyped;
    EXPECT_EQ(&untyped, &untyped.vCopyFrom(this->m_record));
    this->expectSameFields({&copy, &assigned, &typed, &untyped});
}

TYPED_TEST(RecordPattern, ClonesItself) {
    const std::unique_ptr<TypeParam> clone(this->m_record.clone());
    const std::unique_ptr<QoObject2> untyped(this->m_record.vClone());
    ASSERT_NE(nullptr, TypeParam::cast(untyped.get()));
    EXPECT_NE(&this->m_record, clone.get());
    this->expectSameFields({clone.get(), TypeParam::cast(untyped.get())});
}

TYPED_TEST(RecordPattern, IsAssignedByTheVirtualCopy) {
    struct Watching : TypeParam {
        using TypeParam::operator=;
        const QoObject2& vCopyFrom(const QoObject2& other) override {
            source = &other;
            return *this;
        }
        const QoObject2* source = nullptr;
    } record;
    record = this->m_record;
    EXPECT_EQ(&this->m_record, record.source);
    EXPECT_EQ(this->fieldsOf(TypeParam()), this->fieldsOf(record));
}

TYPED_TEST(RecordPattern, CopiesNothingFromItselfOrAnotherKind) {
    EXPECT_EQ(&this->m_record, &this->m_record.vCopyFrom(this->m_record));
    EXPECT_EQ(&this->m_record, &this->m_record.vCopyFrom(Foreign()));
    this->expectSameFields({&this->m_same});
}

// In the base's slots.
TYPED_TEST(RecordPattern, OverridesTheBase) {
    // A pointer to an inherited member has the type of the base.
    using Base = QoObject2;
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vClone), decltype(&Base::vClone)>));
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vCopyFrom), decltype(&Base::vCopyFrom)>));
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vCompareTo), decltype(&Base::vCompareTo)>));
    EXPECT_TRUE((std::is_same_v<decltype(&TypeParam::toString), decltype(&Base::toString)>));
}

TYPED_TEST(RecordPattern, ArchivesByTheOperatorsToo) {
    Loading loading(stored([&](CArchive& ar) { ar << &this->m_record; }));
    TypeParam* loaded = nullptr;
    loading.ar >> loaded;
    const std::unique_ptr<TypeParam> owner(loaded);
    this->expectSameFields({loaded});
}

}  // namespace
