#include <afxcoll.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/base/TestRecords.h"
#include "tests/base/windows/guest/Guests.h"
#include "tests/support/Thrown.h"

namespace {

// What tells the classes of the two guests apart; 0 when there is no such class.
int sizeOf(LPCSTR className) {
    const CRuntimeClass* found = CRuntimeClass::FromName(className);
    return found != nullptr ? found->m_nObjectSize : 0;
}

int numberOfGuest() {
    const int size = sizeOf("Guest");
    return size == 0 ? 0 : size < 200 ? 1 : 2;
}

std::vector<std::string> namesOn(const CRuntimeClass* first) {
    std::vector<std::string> names;
    for (const CRuntimeClass* one = first; one != nullptr; one = one->m_pNextClass) {
        names.emplace_back(one->m_lpszClassName);
    }
    return names;
}

// A guest in an archive.
class StoredGuest {
  public:
    StoredGuest() {
        CArchive archive(&m_file, CArchive::store);
        const std::unique_ptr<CObject> guest(CRuntimeClass::FromName("Guest")->CreateObject());
        archive << guest.get();
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
    EXPECT_EQ(numberOfGuest(), 0);
    std::optional<StoredGuest> stored;
    for (int i = 0; i < 100; ++i) {
        LoadedGuest guest(1);
        ASSERT_NE(guest.handle(), nullptr);
        ASSERT_EQ(numberOfGuest(), 1);
        ASSERT_NE(sizeOf("LateGuest"), 0);
        if (i == 0) stored.emplace();
        ASSERT_EQ(stored->read(), -1);
        guest.free();
        ASSERT_EQ(numberOfGuest(), 0);
        ASSERT_EQ(sizeOf("LateGuest"), 0);
        ASSERT_EQ(stored->read(), CArchiveException::badClass);
    }
}

TEST(ExtensionModule, HasOnlyItsOwnClasses) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    EXPECT_EQ(namesOn(first.state().pFirstSharedClass),
              (std::vector<std::string>{"Foo", "LateGuest", "Guest"}));
    EXPECT_EQ(namesOn(second.state().pFirstSharedClass),
              (std::vector<std::string>{"CObArray", "Foo", "LateGuest", "Guest"}));
    EXPECT_EQ(CRuntimeClass::FromName("SubFoo"), RUNTIME_CLASS(SubFoo));
}

TEST(ExtensionModule, HasItsHandles) {
    const LoadedGuest guest(1);
    EXPECT_TRUE(guest.state().bInitialized);
    EXPECT_EQ(guest.state().hModule, guest.handle());
    EXPECT_EQ(guest.state().hResource, guest.handle());
    EXPECT_EQ(guest.state().pFirstSharedFactory, nullptr);
}

TEST(ExtensionModule, LoadedLastIsSearchedFirstAfterTheApplication) {
    LoadedGuest first(1);
    LoadedGuest second(2);
    EXPECT_EQ(numberOfGuest(), 2);
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
    second.free();
    EXPECT_EQ(numberOfGuest(), 1);
    second = LoadedGuest(2);
    EXPECT_EQ(numberOfGuest(), 2);
    first.free();
    EXPECT_EQ(numberOfGuest(), 2);
}

TEST(ExtensionModule, IsSearchedBeforeTheClassLibrary) {
    LoadedGuest guest(2);
    EXPECT_EQ(sizeOf("CObArray"), 2);
    guest.free();
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("CStringArray"), RUNTIME_CLASS(CStringArray));
}

TEST(ExtensionModule, IsRemovedWithAllItsLinks) {
    LoadedGuest guest(1);
    guest.join();
    guest.join();
    EXPECT_EQ(numberOfGuest(), 1);
    guest.free();
    EXPECT_EQ(numberOfGuest(), 0);
}

TEST(ExtensionModule, LinkedAgainIsTheNewest) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    first.join();
    EXPECT_EQ(numberOfGuest(), 1);
}

TEST(ExtensionModule, IsNotFoundOnceItIsRemoved) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    second.dismiss();
    EXPECT_EQ(numberOfGuest(), 1);
    EXPECT_FALSE(second.state().bInitialized);
    EXPECT_EQ(second.state().pFirstSharedClass, nullptr);
}

TEST(ExtensionModule, MayRemoveAllOthers) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    second.dismiss(TRUE);
    EXPECT_EQ(numberOfGuest(), 0);
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
}

TEST(ExtensionModule, IsInitialisedOnceAndWithAHandle) {
    const LoadedGuest guest(1);
    const CRuntimeClass* const classes = guest.state().pFirstSharedClass;
    EXPECT_TRUE(AfxInitExtensionModule(guest.state(), guest.handle()));
    EXPECT_EQ(guest.state().pFirstSharedClass, classes);
    AFX_EXTENSION_MODULE state = {};
    EXPECT_FALSE(AfxInitExtensionModule(state, nullptr));
    EXPECT_FALSE(state.bInitialized);
    // Nor does it take anybody away.
    AfxTermExtensionModule(state);
    AfxTermExtensionModule(state, TRUE);
    EXPECT_EQ(numberOfGuest(), 1);
}

TEST(ExtensionModule, IsNoLongerFoundWhenItsLinkIsDeleted) {
    const LoadedGuest guest(1);
    AFX_EXTENSION_MODULE copy = guest.state();
    guest.dismiss();
    EXPECT_EQ(numberOfGuest(), 0);
    {
        const CDynLinkLibrary link(copy);
        EXPECT_EQ(numberOfGuest(), 1);
    }
    EXPECT_EQ(numberOfGuest(), 0);
}

TEST(ExtensionModule, MayBeLoadedAndFreedDuringLookUpsOfClassesAndTexts) {
    std::atomic<bool> isDone = false;
    std::atomic<int> wrong = 0;
    std::thread reader([&] {
        while (!isDone) {
            CString text;
            text.LoadString(IDS_GUESTS);
            if (CRuntimeClass::FromName("SubFoo") != RUNTIME_CLASS(SubFoo)) ++wrong;
            if (CRuntimeClass::FromName("Nobody") != nullptr) ++wrong;
        }
    });
    for (int i = 0; i < 100; ++i) {
        const LoadedGuest first(1);
        const LoadedGuest second(2);
    }
    isDone = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
