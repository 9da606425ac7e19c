// What the classes of all records and tables do alike, and how they are registered.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/records/RecordSamples.h"

namespace {

template <class Class>
struct Known;

#define KNOWN_CLASS(Class, Base)                                                  \
    template <>                                                                   \
    struct Known<Class> {                                                         \
        static constexpr const char* kName = #Class;                              \
        static CRuntimeClass* description() { return &Class::class##Class; }      \
        static CRuntimeClass* descriptionOfBase() { return RUNTIME_CLASS(Base); } \
    };

KNOWN_CLASS(NySeConnection, QoObject2)
KNOWN_CLASS(NySeConnectionArray, QoArraySerial2)
KNOWN_CLASS(NySeLock, QoObject2)
KNOWN_CLASS(NySeLockArray, QoArraySerial2)
KNOWN_CLASS(NySeMessage, QoObject2)
KNOWN_CLASS(NySeUser, QoObject2)
KNOWN_CLASS(NySeUserPtrArray, QoArraySerial2)
KNOWN_CLASS(NySeSessionLock, QoObject2)
KNOWN_CLASS(NySeSessionLockPtrArray, QoArraySerial2)

template <class Class>
class RecordClass : public ::testing::Test {};

using Classes =
    ::testing::Types<NySeConnection, NySeConnectionArray, NySeLock, NySeLockArray, NySeMessage,
                     NySeUser, NySeUserPtrArray, NySeSessionLock, NySeSessionLockPtrArray>;
TYPED_TEST_SUITE(RecordClass, Classes);

TYPED_TEST(RecordClass, HasItsName) {
    EXPECT_STREQ(Known<TypeParam>::kName, TypeParam::desc());
    EXPECT_EQ(Known<TypeParam>::description(), TypeParam::GetThisClass());
    EXPECT_EQ(Known<TypeParam>::description(), TypeParam().GetRuntimeClass());
}

TYPED_TEST(RecordClass, IsCreatedByNameUnderAVersionableSchema) {
    const CRuntimeClass* description = CRuntimeClass::FromName(Known<TypeParam>::kName);
    ASSERT_EQ(TypeParam::GetThisClass(), description);
    EXPECT_EQ(0x800007DFu, description->m_wSchema);
    EXPECT_EQ(Known<TypeParam>::descriptionOfBase(), description->m_pfnGetBaseClass());
    EXPECT_EQ(static_cast<int>(sizeof(TypeParam)), description->m_nObjectSize);
    const std::unique_ptr<CObject> made(description->CreateObject());
    EXPECT_TRUE(made->IsKindOf(TypeParam::GetThisClass()));
    const std::unique_ptr<CObject> alsoMade(TypeParam::CreateObject());
    EXPECT_TRUE(alsoMade->IsKindOf(TypeParam::GetThisClass()));
}

TEST(Registration, HappensInAFixedOrder) {
    std::vector<std::string> names;
    const CRuntimeClass* newest = RUNTIME_CLASS(NySeSessionLockPtrArray);
    for (const CRuntimeClass* one = newest; one != nullptr; one = one->m_pNextClass) {
        const std::string name = one->m_lpszClassName;
        if (name.starts_with("NySe")) names.insert(names.begin(), name);
    }
    EXPECT_EQ(
        (std::vector<std::string>{"NySeConnection", "NySeConnectionArray", "NySeLock",
                                  "NySeLockArray", "NySeMessage", "NySeUser", "NySeUserPtrArray",
                                  "NySeSessionLock", "NySeSessionLockPtrArray"}),
        names);
}

}  // namespace
