#include <afxcoll.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/base/TestRecords.h"
#include "tests/base/windows/guest/Guests.h"

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

void storeGuest(CMemFile& file) {
    CArchive archive(&file, CArchive::store);
    const std::unique_ptr<CObject> guest(CRuntimeClass::FromName("Guest")->CreateObject());
    archive << guest.get();
    archive.Close();
    file.SeekToBegin();
}

// The cause of the failure; none when the object could be read.
int readBack(CMemFile& file) {
    try {
        CArchive archive(&file, CArchive::load);
        CObject* object = nullptr;
        archive >> object;
        delete object;
        return CArchiveException::none;
    } catch (CArchiveException* exception) {
        const int cause = exception->m_cause;
        exception->Delete();
        return cause;
    }
}

TEST(ExtensionModule, HasItsClassesFoundWhileItIsLoaded) {
    EXPECT_EQ(numberOfGuest(), 0);
    LoadedGuest guest(1);
    ASSERT_NE(guest.handle(), nullptr);
    EXPECT_EQ(numberOfGuest(), 1);
    EXPECT_NE(sizeOf("LateGuest"), 0);
    guest.free();
    EXPECT_EQ(numberOfGuest(), 0);
    EXPECT_EQ(sizeOf("LateGuest"), 0);
}

TEST(ExtensionModule, HasItsObjectsArchivedWhileItIsLoaded) {
    CMemFile file;
    LoadedGuest guest(1);
    storeGuest(file);
    EXPECT_EQ(readBack(file), CArchiveException::none);
    guest.free();
    file.SeekToBegin();
    EXPECT_EQ(readBack(file), CArchiveException::badClass);
}

TEST(ExtensionModule, ComesAndGoesAHundredTimes) {
    CMemFile file;
    for (int i = 0; i < 100; ++i) {
        LoadedGuest guest(1);
        ASSERT_EQ(numberOfGuest(), 1);
        if (i == 0) storeGuest(file);
        file.SeekToBegin();
        ASSERT_EQ(readBack(file), CArchiveException::none);
        guest.free();
        file.SeekToBegin();
        ASSERT_EQ(readBack(file), CArchiveException::badClass);
    }
}

TEST(ExtensionModule, TakesItsOwnClassesAlone) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    EXPECT_EQ(namesOn(first.state().pFirstSharedClass),
              (std::vector<std::string>{"Foo", "LateGuest", "Guest"}));
    EXPECT_EQ(namesOn(second.state().pFirstSharedClass),
              (std::vector<std::string>{"CObArray", "Foo", "LateGuest", "Guest"}));
    EXPECT_EQ(CRuntimeClass::FromName("SubFoo"), RUNTIME_CLASS(SubFoo));
}

TEST(ExtensionModule, TellsItsHandles) {
    const LoadedGuest guest(1);
    EXPECT_TRUE(guest.state().bInitialized);
    EXPECT_EQ(guest.state().hModule, guest.handle());
    EXPECT_EQ(guest.state().hResource, guest.handle());
    EXPECT_EQ(guest.state().pFirstSharedFactory, nullptr);
}

TEST(ExtensionModule, ThatCameLastIsSearchedFirst) {
    LoadedGuest first(1);
    LoadedGuest second(2);
    EXPECT_EQ(numberOfGuest(), 2);
    second.free();
    EXPECT_EQ(numberOfGuest(), 1);
    second = LoadedGuest(2);
    EXPECT_EQ(numberOfGuest(), 2);
    first.free();
    EXPECT_EQ(numberOfGuest(), 2);
}

TEST(ExtensionModule, ComesAfterTheApplication) {
    const LoadedGuest guest(1);
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
}

TEST(ExtensionModule, ComesBeforeTheClassLibrary) {
    LoadedGuest guest(2);
    EXPECT_EQ(sizeOf("CObArray"), 2);
    guest.free();
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("CStringArray"), RUNTIME_CLASS(CStringArray));
}

TEST(ExtensionModule, LeavesWithAllItsLinks) {
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

TEST(ExtensionModule, IsNotFoundOnceItHasLeft) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    second.dismiss();
    EXPECT_EQ(numberOfGuest(), 1);
    EXPECT_FALSE(second.state().bInitialized);
    EXPECT_EQ(second.state().pFirstSharedClass, nullptr);
}

TEST(ExtensionModule, MayTakeAllOthersWithIt) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    second.dismiss(TRUE);
    EXPECT_EQ(numberOfGuest(), 0);
    EXPECT_EQ(CRuntimeClass::FromName("CObArray"), RUNTIME_CLASS(CObArray));
    EXPECT_EQ(CRuntimeClass::FromName("Foo"), RUNTIME_CLASS(Foo));
}

TEST(ExtensionModule, IsNotInitialisedWithoutAHandle) {
    AFX_EXTENSION_MODULE state = {};
    EXPECT_FALSE(AfxInitExtensionModule(state, nullptr));
    EXPECT_FALSE(state.bInitialized);
}

TEST(ExtensionModule, IsInitialisedOnce) {
    const LoadedGuest guest(1);
    const CRuntimeClass* const classes = guest.state().pFirstSharedClass;
    EXPECT_TRUE(AfxInitExtensionModule(guest.state(), guest.handle()));
    EXPECT_EQ(guest.state().pFirstSharedClass, classes);
    EXPECT_EQ(numberOfGuest(), 1);
}

TEST(ExtensionModule, ThatIsNotInitialisedTakesNobodyAway) {
    const LoadedGuest guest(1);
    AFX_EXTENSION_MODULE state = {};
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

TEST(ExtensionModule, ComesAndGoesWhileOthersLookUpClassesAndTexts) {
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
