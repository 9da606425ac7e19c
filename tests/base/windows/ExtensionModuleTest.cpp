#include <afxcoll.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/base/TestRecords.h"
#include "tests/base/windows/extension/LoadedExtension.h"
#include "tests/support/Thrown.h"

namespace {

// The size of the class, which differs between the two modules; 0 when there is no such class.
int sizeOf(LPCSTR className) {
    const CRuntimeClass* found = CRuntimeClass::FromName(className);
    return found != nullptr ? found->m_nObjectSize : 0;
}

int numberOfModule() {
    const int size = sizeOf("Extension");
    return size == 0 ? 0 : size < 200 ? 1 : 2;
}

std::vector<std::string> namesOn(const CRuntimeClass* first) {
    std::vector<std::string> names;
    for (const CRuntimeClass* one = first; one != nullptr; one = one->m_pNextClass) {
        names.emplace_back(one->m_lpszClassName);
    }
    return names;
}

// An object of a module's class in an archive.
class StoredExtension {
  public:
    StoredExtension() {
        CArchive archive(&m_file, CArchive::store);
        const std::unique_ptr<CObject> extension(
            CRuntimeClass::FromName("Extension")->CreateObject());
        archive << extension.get();
    }
    // The cause of the failure; -1 when the object could be read.
    int read() {
        m_file.SeekToBegin();
        return archiveCause([&] {
            CArchive archive(&m_file, CArchive::load);
            CObject* object = nullptr;
            archive >> object;
            delete object;
        });
    }

  private:
    CMemFile m_file;
};

TEST(ExtensionModule, HasItsClassesFoundAndItsObjectsArchivedWhileItIsLoaded) {
    EXPECT_EQ(numberOfModule(), 0);
    std::optional<StoredExtension> stored;
    for (int i = 0; i < 100; ++i) {
        LoadedExtension extension(1);
        ASSERT_NE(extension.handle(), nullptr);
        ASSERT_EQ(numberOfModule(), 1);
        ASSERT_NE(sizeOf("LateExtension"), 0);
        if (i == 0) stored.emplace();
        ASSERT_EQ(stored->read(), -1);
        extension.free();
        ASSERT_EQ(numberOfModule(), 0);
        ASSERT_EQ(sizeOf("LateExtension"), 0);
        ASSERT_EQ(stored->read(), CArchiveException::badClass);
    }
}

TEST(ExtensionModule, HasOnlyItsOwnClasses) {
    const LoadedExtension first(1);
    const LoadedExtension second(2);
    EXPECT_EQ(namesOn(first.state().pFirstSharedClass),
              (std::vector<std::string>{"Foo", "LateExtension", "Extension"}));
    EXPECT_EQ(namesOn(second.state().pFirstSharedClass),
              (std::vector<std::string>{"CObArray", "Foo", "LateExtension", "Extension"}));
    EXPECT_EQ(CRuntimeClass::FromName("SubFoo"), RUNTIME_CLASS(SubFoo));
}

TEST(ExtensionModule, HasItsHandles) {
    const LoadedExtension extension(1);
    EXPECT_TRUE(extension.state().bInitialized);
    EXPECT_EQ(extension.state().hModule, extension.handle());
    EXPECT_EQ(extension.state().hResource, extension.handle());
    EXPECT_EQ(extension.state().pFirstSharedFactory, nullptr);
}

TEST(ExtensionModule, LoadedLastIsSearchedFirstAfterTheApplication) {
    LoadedExtension first(1);
    LoadedExtension second(2);
    EXPECT_EQ(numberOfModule(), 2);
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
    second.free();
    EXPECT_EQ(numberOfModule(), 1);
    second = LoadedExtension(2);
    EXPECT_EQ(numberOfModule(), 2);
    first.free();
    EXPECT_EQ(numberOfModule(), 2);
}

TEST(ExtensionModule, IsSearchedBeforeTheClassLibrary) {
    LoadedExtension extension(2);
    EXPECT_EQ(sizeOf("CObArray"), 2);
    extension.free();
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("CStringArray"), RUNTIME_CLASS(CStringArray));
}

TEST(ExtensionModule, IsRemovedWithAllItsLinks) {
    LoadedExtension extension(1);
    extension.add();
    extension.add();
    EXPECT_EQ(numberOfModule(), 1);
    extension.free();
    EXPECT_EQ(numberOfModule(), 0);
}

TEST(ExtensionModule, LinkedAgainIsTheNewest) {
    const LoadedExtension first(1);
    const LoadedExtension second(2);
    first.add();
    EXPECT_EQ(numberOfModule(), 1);
}

TEST(ExtensionModule, IsNotFoundOnceItIsRemoved) {
    const LoadedExtension first(1);
    const LoadedExtension second(2);
    second.remove();
    EXPECT_EQ(numberOfModule(), 1);
    EXPECT_FALSE(second.state().bInitialized);
    EXPECT_EQ(second.state().pFirstSharedClass, nullptr);
}

TEST(ExtensionModule, MayRemoveAllOthers) {
    const LoadedExtension first(1);
    const LoadedExtension second(2);
    second.remove(TRUE);
    EXPECT_EQ(numberOfModule(), 0);
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
}

TEST(ExtensionModule, IsInitialisedOnceAndWithAHandle) {
    const LoadedExtension extension(1);
    const CRuntimeClass* const classes = extension.state().pFirstSharedClass;
    EXPECT_TRUE(AfxInitExtensionModule(extension.state(), extension.handle()));
    EXPECT_EQ(extension.state().pFirstSharedClass, classes);
    AFX_EXTENSION_MODULE state = {};
    EXPECT_FALSE(AfxInitExtensionModule(state, nullptr));
    EXPECT_FALSE(state.bInitialized);
    // Nor does it take anybody away.
    AfxTermExtensionModule(state);
    AfxTermExtensionModule(state, TRUE);
    EXPECT_EQ(numberOfModule(), 1);
}

TEST(ExtensionModule, IsNoLongerFoundWhenItsLinkIsDeleted) {
    const LoadedExtension extension(1);
    AFX_EXTENSION_MODULE copy = extension.state();
    extension.remove();
    EXPECT_EQ(numberOfModule(), 0);
    {
        const CDynLinkLibrary link(copy);
        EXPECT_EQ(numberOfModule(), 1);
    }
    EXPECT_EQ(numberOfModule(), 0);
}

TEST(ExtensionModule, MayBeLoadedAndFreedDuringLookUpsOfClassesAndTexts) {
    std::atomic<bool> isDone = false;
    std::atomic<int> wrong = 0;
    std::thread reader([&] {
        while (!isDone) {
            CString text;
            text.LoadString(IDS_MODULES);
            if (CRuntimeClass::FromName("SubFoo") != RUNTIME_CLASS(SubFoo)) ++wrong;
            if (CRuntimeClass::FromName("Nobody") != nullptr) ++wrong;
        }
    });
    for (int i = 0; i < 100; ++i) {
        const LoadedExtension first(1);
        const LoadedExtension second(2);
    }
    isDone = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
