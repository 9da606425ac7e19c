#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "tests/base/TestRecords.h"
#include "tests/support/CStringPrinter.h"

namespace {

TEST(RuntimeClass, DescribesItsClass) {
    const CRuntimeClass* foo = RUNTIME_CLASS(Foo);
    EXPECT_EQ(foo, &Foo::classFoo);
    EXPECT_STREQ(foo->m_lpszClassName, "Foo");
    EXPECT_EQ(foo->m_nObjectSize, static_cast<int>(sizeof(Foo)));
    EXPECT_EQ(foo->m_wSchema, 0x800007DFu);
    EXPECT_EQ(foo->m_pfnGetBaseClass(), RUNTIME_CLASS(CObject));
    EXPECT_EQ(RUNTIME_CLASS(SubFoo)->m_pfnGetBaseClass(), RUNTIME_CLASS(Foo));
    EXPECT_EQ(RUNTIME_CLASS(Fixed)->m_wSchema, 7u);
    EXPECT_EQ(RUNTIME_CLASS(CObArray)->m_wSchema, 0u);
    EXPECT_EQ(RUNTIME_CLASS(CStringArray)->m_wSchema, 0u);
}

TEST(RuntimeClass, KindsFollowTheHierarchy) {
    const SubFoo object;
    EXPECT_EQ(static_cast<const CObject&>(object).GetRuntimeClass(), RUNTIME_CLASS(SubFoo));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(SubFoo)));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(Foo)));
    EXPECT_TRUE(object.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(object.IsKindOf(RUNTIME_CLASS(Fixed)));
    EXPECT_FALSE(Foo().IsKindOf(RUNTIME_CLASS(SubFoo)));
    EXPECT_TRUE(OwningArray().IsKindOf(RUNTIME_CLASS(CObArray)));
    EXPECT_TRUE(CMemFile().IsKindOf(RUNTIME_CLASS(CFile)));
    EXPECT_FALSE(CMemFile().IsKindOf(RUNTIME_CLASS(CObArray)));
    EXPECT_FALSE(RUNTIME_CLASS(CObject)->IsDerivedFrom(RUNTIME_CLASS(Foo)));
    EXPECT_FALSE(RUNTIME_CLASS(Foo)->IsDerivedFrom(nullptr));
}

CObject* PASCAL runOutOfMemory() {
    throw std::bad_alloc();
}

CObject* PASCAL throwMemoryException() {
    AfxThrowMemoryException();
}

TEST(RuntimeClass, CreatesObjectsInTheirDefaultStateOrNothing) {
    const std::unique_ptr<CObject> object(RUNTIME_CLASS(SubFoo)->CreateObject());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRuntimeClass(), RUNTIME_CLASS(SubFoo));
    EXPECT_EQ(static_cast<SubFoo*>(object.get())->m_value, 0);
    const std::unique_ptr<CObject> made(RUNTIME_CLASS(CreatableOnly)->CreateObject());
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(RUNTIME_CLASS(DynamicOnly)->CreateObject(), nullptr);
    EXPECT_EQ(RUNTIME_CLASS(CObject)->CreateObject(), nullptr);
    EXPECT_EQ(RUNTIME_CLASS(Unmakeable)->CreateObject(), nullptr);
    for (const auto create : {&runOutOfMemory, &throwMemoryException}) {
        const CRuntimeClass poor = {"Poor", 8, 1, create, nullptr, nullptr};
        EXPECT_EQ(poor.CreateObject(), nullptr);
    }
}

TEST(Objects, AreAllocatedByEveryFormOfNew) {
    for (Fixed* const object :
         {new Fixed, new (std::nothrow) Fixed, new (__FILE__, __LINE__) Fixed}) {
        ASSERT_NE(object, nullptr);
        EXPECT_TRUE(object->IsKindOf(RUNTIME_CLASS(Fixed)));
        delete object;
    }
    alignas(Fixed) std::byte place[sizeof(Fixed)];
    Fixed* const placed = new (place) Fixed;
    EXPECT_EQ(static_cast<void*>(placed), static_cast<void*>(place));
    placed->~Fixed();
}

TEST(Objects, AreNotCopiedUnlessTheirClassDefinesIt) {
    EXPECT_FALSE((std::is_copy_constructible_v<Link> || std::is_copy_assignable_v<Link>));
    EXPECT_FALSE((std::is_copy_constructible_v<CObArray> || std::is_copy_assignable_v<CObArray>));
}

TEST(RuntimeClass, OnlyDeclaredClassesAreSerializable) {
    EXPECT_TRUE(Foo().IsSerializable());
    EXPECT_TRUE(Fixed().IsSerializable());
    EXPECT_TRUE(CObArray().IsSerializable());
    EXPECT_FALSE(DynamicOnly().IsSerializable());
    EXPECT_FALSE(CreatableOnly().IsSerializable());
    EXPECT_FALSE(CMemFile().IsSerializable());
}

TEST(RuntimeClass, IsFoundByItsName) {
    EXPECT_EQ(CRuntimeClass::FromName(_T("Foo")), RUNTIME_CLASS(Foo));
    for (const CRuntimeClass* one : {RUNTIME_CLASS(Foo), RUNTIME_CLASS(SubFoo),
                                     RUNTIME_CLASS(CObArray), RUNTIME_CLASS(CStringArray)}) {
        EXPECT_EQ(CRuntimeClass::FromName(one->m_lpszClassName), one);
    }
    for (const char* name : {"foo", "Fo", "Fooo", "", "CreatableOnly", LPCSTR{nullptr}}) {
        EXPECT_EQ(CRuntimeClass::FromName(name), nullptr);
    }
    EXPECT_EQ(CRuntimeClass::FromName(_T("\u0146oo")), nullptr);
    EXPECT_EQ(CRuntimeClass::FromName(static_cast<LPCWSTR>(nullptr)), nullptr);
}

TEST(RuntimeClass, DownCastReturnsTheObjectOrNull) {
    SubFoo object;
    CObject* base = &object;
    EXPECT_EQ(DYNAMIC_DOWNCAST(SubFoo, base), &object);
    EXPECT_EQ(DYNAMIC_DOWNCAST(Foo, base), &object);
    EXPECT_EQ(DYNAMIC_DOWNCAST(Fixed, base), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(Foo, static_cast<CObject*>(nullptr)), nullptr);
    EXPECT_EQ(AfxDynamicDownCast(RUNTIME_CLASS(Foo), base), base);
}

}  // namespace
