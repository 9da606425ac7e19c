#include <QoUi.h>
#include <QoUiLoadString.h>
#include <QoUiSwitchResource.h>
#include <QoWaitCursor.h>

#include <gtest/gtest.h>

#include "tests/base/windows/extension/LoadedExtension.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/SlotOrder.h"

namespace {

// Two modules that are loaded, and the current one before the test.
class WithExtensions : public ::testing::Test {
  protected:
    const LoadedExtension m_first{1};
    const LoadedExtension m_second{2};
    const HINSTANCE m_before = AfxGetResourceHandle();
};

using QoUiModules = WithExtensions;
using QoUi::getHInstanceModuleRc;

TEST_F(QoUiModules, AreFoundWhenTheyAreLoaded) {
    const HINSTANCE library = ::GetModuleHandleW(L"NyBaseDll.dll");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(getHInstanceModuleRc(L"NyBaseDll", L".dll", L""), library);
    EXPECT_EQ(getHInstanceModuleRc(L"NyBaseDll", L".exe", L""), nullptr);
}

TEST(QoUi, LoadsNoModule) {
    EXPECT_EQ(getHInstanceModuleRc(L"extension_module1", L".dll", L""), nullptr);
    EXPECT_EQ(getHInstanceModuleRc(L"extension_module", L".dll", L"1"), nullptr);
}

TEST_F(QoUiModules, AreThoseForTheLanguageOrWithoutOne) {
    EXPECT_EQ(getHInstanceModuleRc(L"extension_module", L".dll", L"1"), m_first.handle());
    EXPECT_EQ(getHInstanceModuleRc(L"extension_module", L".dll", L"2"), m_second.handle());
    EXPECT_EQ(getHInstanceModuleRc(L"extension_module1", L".dll", L"de"), m_first.handle());
}

using SwitchResource = WithExtensions;

class SwitchTo : public QoUiSwitchResource {
  public:
    using QoUiSwitchResource::QoUiSwitchResource;
    using QoUiSwitchResource::setResourceHandle;
};

TEST_F(SwitchResource, SwitchesAndRestoresInTheReverseOrder) {
    {
        const SwitchTo outer(m_first.handle());
        {
            const SwitchTo inner(m_second.handle());
            EXPECT_EQ(AfxGetResourceHandle(), m_second.handle());
        }
        EXPECT_EQ(AfxGetResourceHandle(), m_first.handle());
    }
    EXPECT_EQ(AfxGetResourceHandle(), m_before);
}

TEST_F(SwitchResource, SwitchesAgainAndStillRestoresTheFirst) {
    {
        SwitchTo extension(m_first.handle());
        extension.setResourceHandle(m_second.handle());
        EXPECT_EQ(AfxGetResourceHandle(), m_second.handle());
    }
    EXPECT_EQ(AfxGetResourceHandle(), m_before);
}

TEST_F(SwitchResource, StaysWhereItIsWithoutAHandle) {
    const SwitchTo outer(m_first.handle());
    SwitchTo inner(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), m_first.handle());
    inner.setResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), m_first.handle());
}

using LoadString = WithExtensions;

class TextOf final : public QoUiLoadString {
  public:
    TextOf(HINSTANCE module, UINT id) : QoUiLoadString(id), m_module(module) {}
    static std::size_t slotOfHandle() { return slotOf(&TextOf::getResourceHandle); }

  protected:
    HINSTANCE getResourceHandle() const override { return m_module; }

  private:
    HINSTANCE m_module;
};

class CurrentText final : public QoUiLoadString {
  public:
    using QoUiLoadString::QoUiLoadString;
};

TEST_F(LoadString, TakesTheTextFromItsModuleAlone) {
    const SwitchTo toExtension(m_first.handle());
    EXPECT_EQ(TextOf(m_first.handle(), IDS_MODULES).loadString(), L"a module's 1");
    EXPECT_EQ(TextOf(m_second.handle(), IDS_MODULES).loadString(), L"a module's 2");
    EXPECT_EQ(TextOf(m_second.handle(), IDS_FIRST_MODULE).loadString(), CString());
    EXPECT_EQ(TextOf(nullptr, IDS_EVERYWHERE).loadString(), CString());
}

TEST_F(LoadString, UsesTheCurrentModuleByDefault) {
    EXPECT_EQ(CurrentText(IDS_EVERYWHERE).loadString(), L"of the program");
    const SwitchTo toExtension(m_first.handle());
    EXPECT_EQ(CurrentText(IDS_EVERYWHERE).loadString(), L"of module 1");
}

TEST_F(LoadString, HasOneVirtualOperation) {
    EXPECT_EQ(TextOf::slotOfHandle(), 0u);
}

class WaitCursor : public ::testing::Test {
  protected:
    ~WaitCursor() override { ::SetCursor(nullptr); }

    const HCURSOR m_wait = ::LoadCursorW(nullptr, IDC_WAIT);
};

TEST_F(WaitCursor, IsShownWhileItExistsAndThenThePreviousOne) {
    for (const HCURSOR before : {::LoadCursorW(nullptr, IDC_CROSS), HCURSOR{nullptr}}) {
        ::SetCursor(before);
        {
            const QoWaitCursor outer;
            { const QoWaitCursor inner; }
            EXPECT_EQ(m_wait, ::GetCursor());
        }
        EXPECT_EQ(before, ::GetCursor());
    }
}

}  // namespace
