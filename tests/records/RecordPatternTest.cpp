// What every record class does alike.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <type_traits>

#include "tests/records/RecordSamples.h"
#include "tests/support/ArchiveBytes.h"
#include "tests/support/SlotOrder.h"

namespace {

// Not of any record's kind.
class Foreign : public QoObject2 {
  public:
    QoObject2* vClone() const override { return new Foreign; }
};

template <class Record>
class RecordPattern : public ::testing::Test {
  protected:
    static Bytes fieldsOf(const Record& record) {
        return stored([&](CArchive& ar) { const_cast<Record&>(record).Serialize(ar); });
    }
};

using Records = ::testing::Types<NySeUser, NySeConnection, NySeSessionLock, NySeLock, NySeMessage>;
TYPED_TEST_SUITE(RecordPattern, Records);

TYPED_TEST(RecordPattern, KnowsItsName) {
    EXPECT_STREQ(Sample<TypeParam>::kName, TypeParam::desc());
    EXPECT_EQ(Sample<TypeParam>::description(), TypeParam::GetThisClass());
    EXPECT_EQ(Sample<TypeParam>::description(), TypeParam().GetRuntimeClass());
}

TYPED_TEST(RecordPattern, IsMadeByNameUnderAVersionableSchema) {
    const CRuntimeClass* description = CRuntimeClass::FromName(Sample<TypeParam>::kName);
    ASSERT_EQ(TypeParam::GetThisClass(), description);
    EXPECT_EQ(0x800007DFu, description->m_wSchema);
    EXPECT_EQ(RUNTIME_CLASS(QoObject2), description->m_pfnGetBaseClass());
    EXPECT_EQ(static_cast<int>(sizeof(TypeParam)), description->m_nObjectSize);
    const std::unique_ptr<CObject> made(description->CreateObject());
    EXPECT_TRUE(made->IsKindOf(TypeParam::GetThisClass()));
    const std::unique_ptr<CObject> alsoMade(TypeParam::CreateObject());
    EXPECT_TRUE(alsoMade->IsKindOf(TypeParam::GetThisClass()));
}

TYPED_TEST(RecordPattern, IsMadeByEveryFormOfNew) {
    for (TypeParam* const record :
         {new TypeParam, new (std::nothrow) TypeParam, new (__FILE__, __LINE__) TypeParam}) {
        ASSERT_NE(nullptr, record);
        EXPECT_EQ(this->fieldsOf(TypeParam()), this->fieldsOf(*record));
        delete record;
    }
    alignas(TypeParam) std::byte place[sizeof(TypeParam)];
    (new (place) TypeParam)->~TypeParam();
}

TYPED_TEST(RecordPattern, EqualsItselfUnderEveryKey) {
    const TypeParam record = Sample<TypeParam>::make();
    for (const short key : {-1, 0, 1, 2, 3, 4, 99}) {
        EXPECT_EQ(QoSort::equal, record.vCompareTo(record, key)) << key;
    }
}

TYPED_TEST(RecordPattern, HasNoOrderUnderAnUnknownKey) {
    const TypeParam record = Sample<TypeParam>::make();
    const TypeParam same = Sample<TypeParam>::make();
    for (const short key : {-1, 0, 4, 99}) {
        EXPECT_EQ(QoSort::noOrder, record.vCompareTo(same, key)) << key;
    }
}

TYPED_TEST(RecordPattern, UnknownKeyLeavesTheResultAlone) {
    const TypeParam record = Sample<TypeParam>::make();
    QoSort::CompareResult result = QoSort::after;
    record.typeCompareTo(Sample<TypeParam>::make(), 99, result);
    EXPECT_EQ(QoSort::after, result);
}

TYPED_TEST(RecordPattern, HasNoOrderAgainstAnotherKind) {
    EXPECT_EQ(QoSort::noOrder, Sample<TypeParam>::make().vCompareTo(Foreign(), 1));
}

TYPED_TEST(RecordPattern, OperatorEqualsMeansTheSameObject) {
    const TypeParam record = Sample<TypeParam>::make();
    EXPECT_TRUE(record == record);
    EXPECT_FALSE(record == Sample<TypeParam>::make());
}

TYPED_TEST(RecordPattern, CastsOnlyItsOwnKind) {
    TypeParam record;
    Foreign foreign;
    EXPECT_EQ(&record, TypeParam::cast(&record));
    EXPECT_EQ(nullptr, TypeParam::cast(&foreign));
    EXPECT_EQ(nullptr, TypeParam::cast(nullptr));
}

TYPED_TEST(RecordPattern, CopiesItsFields) {
    const TypeParam record = Sample<TypeParam>::make();
    const Bytes fields = this->fieldsOf(record);
    EXPECT_NE(fields, this->fieldsOf(TypeParam()));

    const TypeParam copy(record);
    TypeParam assigned;
    EXPECT_EQ(&assigned, &(assigned = record));
    TypeParam typed;
    typed.typeCopyFrom(record);
    TypeParam untyped;
    EXPECT_EQ(&untyped, &untyped.vCopyFrom(record));
    for (const TypeParam* one :
         std::initializer_list<const TypeParam*>{&copy, &assigned, &typed, &untyped}) {
        EXPECT_EQ(toHex(fields), toHex(this->fieldsOf(*one)));
    }
}

TYPED_TEST(RecordPattern, ClonesItself) {
    const TypeParam record = Sample<TypeParam>::make();
    const std::unique_ptr<TypeParam> clone(record.clone());
    const std::unique_ptr<QoObject2> untyped(record.vClone());
    ASSERT_NE(nullptr, TypeParam::cast(untyped.get()));
    EXPECT_NE(&record, clone.get());
    EXPECT_EQ(toHex(this->fieldsOf(record)), toHex(this->fieldsOf(*clone)));
    EXPECT_EQ(toHex(this->fieldsOf(record)),
              toHex(this->fieldsOf(*TypeParam::cast(untyped.get()))));
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
    const TypeParam other = Sample<TypeParam>::make();
    record = other;
    EXPECT_EQ(&other, record.source);
    EXPECT_EQ(toHex(this->fieldsOf(TypeParam())), toHex(this->fieldsOf(record)));
}

TYPED_TEST(RecordPattern, TakesNothingFromItselfOrAnotherKind) {
    TypeParam record = Sample<TypeParam>::make();
    EXPECT_EQ(&record, &record.vCopyFrom(record));
    EXPECT_EQ(&record, &record.vCopyFrom(Foreign()));
    EXPECT_EQ(toHex(this->fieldsOf(Sample<TypeParam>::make())), toHex(this->fieldsOf(record)));
}

TYPED_TEST(RecordPattern, OverridesTheBaseInItsSlots) {
    EXPECT_EQ(0u, slotOf(&TypeParam::GetRuntimeClass));
    EXPECT_EQ(3u, slotOf(&TypeParam::Serialize));
    EXPECT_EQ(7u, slotOf(&TypeParam::vClone));
    EXPECT_EQ(8u, slotOf(&TypeParam::vCopyFrom));
    EXPECT_EQ(9u, slotOf(&TypeParam::vCompareTo));
    // A pointer to an inherited member has the type of the base.
    using Base = QoObject2;
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vClone), decltype(&Base::vClone)>));
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vCopyFrom), decltype(&Base::vCopyFrom)>));
    EXPECT_FALSE((std::is_same_v<decltype(&TypeParam::vCompareTo), decltype(&Base::vCompareTo)>));
    EXPECT_TRUE((std::is_same_v<decltype(&TypeParam::toString), decltype(&Base::toString)>));
}

TYPED_TEST(RecordPattern, ArchivesByTheOperatorsToo) {
    TypeParam record = Sample<TypeParam>::make();
    const Bytes bytes = stored([&](CArchive& ar) { ar << &record; });
    Loading loading(bytes);
    TypeParam* loaded = nullptr;
    loading.ar >> loaded;
    const std::unique_ptr<TypeParam> owner(loaded);
    EXPECT_EQ(toHex(this->fieldsOf(record)), toHex(this->fieldsOf(*loaded)));
}

}  // namespace
