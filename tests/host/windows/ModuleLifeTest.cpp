// The module as a host loads and frees it; this program is not linked with it.
#include <afxdllx.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NyServer/host/windows/ModuleEntry.h"
#include "NyServer/host/windows/ModuleResources.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/LoadedLibrary.h"

namespace {

class Module : public testing::Test {
  protected:
    static bool knows(LPCSTR className) { return CRuntimeClass::FromName(className) != nullptr; }

    static bool hasText(UINT id) {
        CString text;
        return text.LoadString(id) != FALSE;
    }

    LoadedLibrary load() { return LoadedLibrary(L"NyServerDll.dll"); }
};

const char* const kRecords[] = {
    "NySeConnection",   "NySeConnectionArray", "NySeLock",
    "NySeLockArray",    "NySeMessage",         "NySeUser",
    "NySeUserPtrArray", "NySeSessionLock",     "NySeSessionLockPtrArray"};

TEST_F(Module, AddsAndRemovesItsClassesAndTextsAHundredTimes) {
    for (int i = 0; i < 100; ++i) {
        LoadedLibrary library = load();
        for (const char* name : kRecords) ASSERT_TRUE(knows(name)) << name;
        ASSERT_TRUE(hasText(IDS_NYSERVER_NAME));
        library.free();
        for (const char* name : kRecords) ASSERT_FALSE(knows(name)) << name;
        ASSERT_FALSE(hasText(IDS_NYSERVER_NAME));
    }
}

TEST_F(Module, RegistersItsClassesInTheirOrder) {
    const LoadedLibrary library = load();
    std::vector<std::string> names;
    for (const CRuntimeClass* one = CRuntimeClass::FromName("NySeSessionLockPtrArray");
         one != nullptr; one = one->m_pNextClass) {
        names.insert(names.begin(), one->m_lpszClassName);
    }
    EXPECT_EQ(names, std::vector<std::string>(std::begin(kRecords), std::end(kRecords)));
}

TEST_F(Module, HasItsMessageRegisteredWhenItIsLoaded) {
    const LoadedLibrary library = load();
    const auto* message = library.symbol<unsigned int*>("_ZN4NySe19_TM_NYSERVERMESSAGEE");
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(*message, ::RegisterWindowMessageW(L"TM_NYSERVERMESSAGE"));
    EXPECT_NE(*message, 0u);
}

TEST_F(Module, AddedTwiceIsRemovedCompletely) {
    LoadedLibrary library = load();
    library.symbol<void (*)()>("_ZN4NySe7initDllEv")();
    EXPECT_TRUE(knows("NySeUser"));
    library.free();
    EXPECT_FALSE(knows("NySeUser"));
    EXPECT_FALSE(hasText(IDS_NYSERVER_NAME));
}

// For a host that the module has not joined while it was loaded.
TEST_F(Module, IsAddedByItsStartUpCallAlone) {
    const LoadedLibrary library = load();
    AFX_EXTENSION_MODULE host = {};
    ASSERT_TRUE(AfxInitExtensionModule(host, ::GetModuleHandleW(nullptr)));
    AfxTermExtensionModule(host, TRUE);
    ASSERT_FALSE(knows("NySeLock"));
    library.symbol<void (*)()>("_ZN4NySe7initDllEv")();
    EXPECT_TRUE(knows("NySeLock"));
    EXPECT_TRUE(hasText(IDS_NYSERVER_NAME));
}

// A client object of the module, in memory of the test's.
class LoadedClient {
  public:
    explicit LoadedClient(const LoadedLibrary& library) : m_library(library) {
        m_library.symbol<void (*)(void*)>("_ZN12CUT_WSClientC1Ev")(m_bytes);
    }
    ~LoadedClient() { m_library.symbol<void (*)(void*)>("_ZN12CUT_WSClientD1Ev")(m_bytes); }
    LoadedClient(const LoadedClient&) = delete;
    LoadedClient& operator=(const LoadedClient&) = delete;

    int initAsync(HINSTANCE instance) {
        return m_library.symbol<int (*)(void*, HINSTANCE)>(
            "_ZN12CUT_WSClient9InitAsyncEP11HINSTANCE__")(m_bytes, instance);
    }

  private:
    const LoadedLibrary& m_library;
    alignas(16) char m_bytes[8192]{};
};

// A class that stays would have a procedure in memory that is gone.
TEST_F(Module, UnregistersItsWindowClasses) {
    const HINSTANCE instances[] = {::GetModuleHandleW(nullptr),
                                   ::GetModuleHandleW(L"kernel32.dll")};
    const auto isRegistered = [](HINSTANCE instance) {
        WNDCLASSW found{};
        return ::GetClassInfoW(instance, L"CUT_WSClient", &found) != FALSE;
    };
    for (int round = 0; round < 3; ++round) {
        LoadedLibrary library = load();
        for (const HINSTANCE instance : instances) {
            LoadedClient client(library);
            ASSERT_EQ(client.initAsync(instance), 0);
            ASSERT_TRUE(isRegistered(instance));
        }
        library.free();
        for (const HINSTANCE instance : instances) EXPECT_FALSE(isRegistered(instance)) << round;
    }
}

CRuntimeClass visitor = {"Visitor", 1, 1, nullptr, nullptr, nullptr};

// The entry with a state of the test's own: the program's module, which has registered a class.
class ModuleEntry : public testing::Test {
  protected:
    ModuleEntry() { AfxClassInit(&visitor); }
    ~ModuleEntry() override {
        AfxInitExtensionModule(m_state, m_program);
        AfxTermExtensionModule(m_state);
    }

    int enter(DWORD reason) { return moduleentry::onEvent(m_state, m_program, reason); }
    static bool knowsVisitor() { return CRuntimeClass::FromName("Visitor") == &visitor; }

    HINSTANCE m_program = ::GetModuleHandleW(nullptr);
    AFX_EXTENSION_MODULE m_state = {};
};

TEST_F(ModuleEntry, AddsTheModuleWhenTheProcessAttaches) {
    EXPECT_EQ(enter(DLL_PROCESS_ATTACH), 1);
    EXPECT_TRUE(m_state.bInitialized);
    EXPECT_EQ(m_state.hModule, m_program);
    EXPECT_EQ(m_state.pFirstSharedClass, &visitor);
    EXPECT_TRUE(knowsVisitor());
}

TEST_F(ModuleEntry, RefusesTheModuleThatCannotBeInitialised) {
    EXPECT_EQ(moduleentry::onEvent(m_state, nullptr, DLL_PROCESS_ATTACH), 0);
    EXPECT_FALSE(m_state.bInitialized);
}

TEST_F(ModuleEntry, RemovesTheModuleWhenTheProcessDetaches) {
    enter(DLL_PROCESS_ATTACH);
    ASSERT_TRUE(moduleentry::link(m_state));
    EXPECT_EQ(enter(DLL_PROCESS_DETACH), 1);
    EXPECT_FALSE(m_state.bInitialized);
    EXPECT_FALSE(knowsVisitor());
}

TEST_F(ModuleEntry, DoesNothingForAnyOtherReason) {
    for (const bool isAttached : {false, true}) {
        if (isAttached) enter(DLL_PROCESS_ATTACH);
        for (const DWORD reason : {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, 4, 99}) {
            EXPECT_EQ(enter(reason), 1);
            EXPECT_EQ(m_state.bInitialized, isAttached);
            EXPECT_TRUE(knowsVisitor());
        }
    }
}

}  // namespace
