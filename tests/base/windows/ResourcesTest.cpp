#include <afxwin.h>

#include <gtest/gtest.h>

#include "tests/base/windows/extension/LoadedExtension.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/MessageBoxWatch.h"

namespace {

// Two extension modules, the second the newest; no resource handle set.
class Resources : public testing::Test {
  protected:
    ~Resources() override { AfxSetResourceHandle(nullptr); }

    static CString text(UINT id) {
        CString loaded = L"unchanged";
        const BOOL isLoaded = loaded.LoadString(id);
        EXPECT_EQ(isLoaded != FALSE, loaded != L"unchanged");
        return loaded;
    }
    // The text that each module has; the other resource is found in the same module.
    CString modulesText() const {
        const CString loaded = text(IDS_MODULES);
        EXPECT_EQ(finder(L"EVERYMODULE"),
                  loaded == L"a module's 1" ? m_first.handle() : m_second.handle());
        return loaded;
    }

    static HMODULE finder(LPCWSTR name) { return AfxFindResourceHandle(name, RT_RCDATA); }

    // Those of the second module are found once the first is freed.
    void expectTheFirstModulesAndThenTheSeconds() {
        EXPECT_EQ(modulesText(), L"a module's 1");
        m_first.free();
        EXPECT_EQ(modulesText(), L"a module's 2");
    }

    LoadedExtension m_first{1};
    LoadedExtension m_second{2};
    HMODULE m_program = ::GetModuleHandleW(nullptr);
};

TEST_F(Resources, AreTheProgramsUnlessAHandleIsSet) {
    EXPECT_EQ(AfxGetResourceHandle(), m_program);
    AfxSetResourceHandle(m_first.handle());
    EXPECT_EQ(AfxGetResourceHandle(), m_first.handle());
    EXPECT_EQ(AfxGetInstanceHandle(), m_program);
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), m_program);
}

TEST_F(Resources, AreSearchedInTheCurrentModuleFirst) {
    EXPECT_EQ(text(IDS_EVERYWHERE), L"of the program");
    EXPECT_EQ(finder(L"EVERYWHERE"), m_program);
    AfxSetResourceHandle(m_first.handle());
    EXPECT_EQ(text(IDS_EVERYWHERE), L"of module 1");
    EXPECT_EQ(finder(L"EVERYWHERE"), m_first.handle());
}

TEST_F(Resources, AreSearchedInTheNewestExtensionModuleNext) {
    EXPECT_EQ(modulesText(), L"a module's 2");
    m_second.free();
    EXPECT_EQ(modulesText(), L"a module's 1");
}

TEST_F(Resources, AreSearchedUntilAModuleHasThem) {
    EXPECT_EQ(text(IDS_FIRST_MODULE), L"of module 1 alone");
    EXPECT_EQ(finder(L"FIRSTMODULE"), m_first.handle());
}

TEST_F(Resources, OfSystemModulesAreSearchedLast) {
    AFX_EXTENSION_MODULE state = m_second.state();
    m_second.remove();
    const CDynLinkLibrary system(state, TRUE);
    expectTheFirstModulesAndThenTheSeconds();
}

TEST_F(Resources, OfTheCurrentModuleAreSearchedAfterTheOthersWhenItIsTheSystems) {
    AFX_EXTENSION_MODULE state = m_second.state();
    m_second.remove();
    AfxSetResourceHandle(m_second.handle());
    EXPECT_EQ(text(IDS_MODULES), L"a module's 2");
    const CDynLinkLibrary system(state, TRUE);
    expectTheFirstModulesAndThenTheSeconds();
}

TEST_F(Resources, OfTheCurrentSystemModuleAreSearchedBeforeThoseOfOthers) {
    AFX_EXTENSION_MODULE first = m_first.state();
    AFX_EXTENSION_MODULE second = m_second.state();
    m_first.remove();
    m_second.remove();
    AfxSetResourceHandle(m_first.handle());
    const CDynLinkLibrary current(first, TRUE);
    const CDynLinkLibrary newer(second, TRUE);
    EXPECT_EQ(text(IDS_MODULES), L"a module's 1");
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(text(IDS_MODULES), L"a module's 2");
}

TEST_F(Resources, OfARemovedModuleAreNotSearched) {
    AFX_EXTENSION_MODULE state = m_second.state();
    state.hResource = m_first.handle();
    const CDynLinkLibrary link(state);
    m_first.free();
    EXPECT_EQ(modulesText(), L"a module's 2");
}

TEST_F(Resources, MayLieInAFileMappedForThemAlone) {
    wchar_t path[MAX_PATH] = L"";
    ::GetModuleFileNameW(m_first.handle(), path, MAX_PATH);
    const HMODULE file = ::LoadLibraryExW(path, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    AfxSetResourceHandle(file);
    EXPECT_EQ(text(IDS_FIRST_MODULE), L"of module 1 alone");
    EXPECT_EQ(finder(L"FIRSTMODULE"), file);
    AfxSetResourceHandle(nullptr);
    ::FreeLibrary(file);
}

TEST_F(Resources, MayLieInAnotherModuleThanTheClasses) {
    AFX_EXTENSION_MODULE state = m_second.state();
    state.hResource = m_first.handle();
    const CDynLinkLibrary link(state);
    EXPECT_EQ(modulesText(), L"a module's 1");
}

TEST_F(Resources, ThatNoModuleHasAreLookedUpInTheCurrentOne) {
    EXPECT_EQ(finder(L"NOSUCHTHING"), m_program);
    AfxSetResourceHandle(m_second.handle());
    EXPECT_EQ(finder(L"NOSUCHTHING"), m_second.handle());
    EXPECT_EQ(text(IDS_NOWHERE), L"unchanged");
}

TEST_F(Resources, OfOneModuleAreSearchedThereAlone) {
    CString text = L"unchanged";
    EXPECT_FALSE(text.LoadString(m_second.handle(), IDS_FIRST_MODULE));
    EXPECT_EQ(text, L"unchanged");
    EXPECT_TRUE(text.LoadString(m_first.handle(), IDS_FIRST_MODULE));
    EXPECT_EQ(text, L"of module 1 alone");
}

TEST_F(Resources, GiveFormats) {
    CString text;
    text.Format(IDS_PATTERN, L"She", 3);
    EXPECT_EQ(text, L"She has 3");
    text.Format(IDS_NOWHERE, L"She", 3);
    EXPECT_EQ(text, CString());
}

TEST_F(Resources, GiveTheTextsOfMessageBoxes) {
    MessageBoxWatch watch(IDYES);
    EXPECT_EQ(AfxMessageBox(IDS_MODULES, MB_YESNO), IDYES);
    ASSERT_EQ(watch.boxes().size(), 1u);
    EXPECT_EQ(watch.boxes()[0].text, L"a module's 2");
}

TEST(AfxMessageBox, ShowsTheTextUnderTheProgramsName) {
    MessageBoxWatch watch(IDOK);
    EXPECT_EQ(AfxMessageBox(L"Something went wrong"), IDOK);
    ASSERT_EQ(watch.boxes().size(), 1u);
    EXPECT_EQ(watch.boxes()[0].text, L"Something went wrong");
    EXPECT_EQ(watch.boxes()[0].title, L"base_tests");
}

TEST(AfxMessageBox, ShowsTheIconAskedFor) {
    MessageBoxWatch watch(IDOK);
    AfxMessageBox(L"plain");
    AfxMessageBox(L"error", MB_ICONERROR);
    ASSERT_EQ(watch.boxes().size(), 2u);
    EXPECT_EQ(nullptr, watch.boxes()[0].icon);
    EXPECT_EQ(::LoadIconW(nullptr, IDI_ERROR), watch.boxes()[1].icon);
}

}  // namespace
