#include <QoUi.h>
#include <QoUiLoadString.h>
#include <QoUiSwitchResource.h>

#include <gtest/gtest.h>

#include "tests/base/windows/guest/Guests.h"
#include "tests/support/CStringPrinter.h"
#include "tests/support/SlotOrder.h"

namespace {

TEST(QoUi, FindsALoadedModule) {
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"NyBaseDll", L".dll", L""),
              ::GetModuleHandleW(L"NyBaseDll.dll"));
    EXPECT_NE(QoUi::getHInstanceModuleRc(L"NyBaseDll", L".dll", L""), nullptr);
}

TEST(QoUi, FindsNoModuleThatIsNotLoaded) {
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"guest_module1", L".dll", L""), nullptr);
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"NyBaseDll", L".exe", L""), nullptr);
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"guest_module", L".dll", L"1"), nullptr);
}

TEST(QoUi, PrefersTheVariantForTheLanguage) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"guest_module", L".dll", L"1"), first.handle());
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"guest_module", L".dll", L"2"), second.handle());
}

TEST(QoUi, FallsBackToTheModuleItself) {
    const LoadedGuest guest(1);
    EXPECT_EQ(QoUi::getHInstanceModuleRc(L"guest_module1", L".dll", L"de"), guest.handle());
}

class SwitchTo : public QoUiSwitchResource {
  public:
    using QoUiSwitchResource::QoUiSwitchResource;
    using QoUiSwitchResource::setResourceHandle;
};

TEST(QoUiSwitchResource, SwitchesAndRestores) {
    const LoadedGuest guest(1);
    const HINSTANCE before = AfxGetResourceHandle();
    {
        const SwitchTo toGuest(guest.handle());
        EXPECT_EQ(AfxGetResourceHandle(), guest.handle());
    }
    EXPECT_EQ(AfxGetResourceHandle(), before);
}

TEST(QoUiSwitchResource, RestoresInTheReverseOrder) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    const HINSTANCE before = AfxGetResourceHandle();
    {
        const SwitchTo outer(first.handle());
        {
            const SwitchTo inner(second.handle());
            EXPECT_EQ(AfxGetResourceHandle(), second.handle());
        }
        EXPECT_EQ(AfxGetResourceHandle(), first.handle());
    }
    EXPECT_EQ(AfxGetResourceHandle(), before);
}

TEST(QoUiSwitchResource, SwitchesAgainAndStillRestoresTheFirst) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    const HINSTANCE before = AfxGetResourceHandle();
    {
        SwitchTo guest(first.handle());
        guest.setResourceHandle(second.handle());
        EXPECT_EQ(AfxGetResourceHandle(), second.handle());
    }
    EXPECT_EQ(AfxGetResourceHandle(), before);
}

TEST(QoUiSwitchResource, StaysWhereItIsWithoutAHandle) {
    const LoadedGuest guest(1);
    const SwitchTo outer(guest.handle());
    SwitchTo inner(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), guest.handle());
    inner.setResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), guest.handle());
}

class TextOf final : public QoUiLoadString {
  public:
    TextOf(HINSTANCE module, UINT id) : QoUiLoadString(id), m_module(module) {}
    static void expectSlots() { EXPECT_EQ(slotOf(&TextOf::getResourceHandle), 0u); }

  protected:
    HINSTANCE getResourceHandle() const override { return m_module; }

  private:
    HINSTANCE m_module;
};

class CurrentText final : public QoUiLoadString {
  public:
    using QoUiLoadString::QoUiLoadString;
};

TEST(QoUiLoadString, TakesTheTextFromItsModuleAlone) {
    const LoadedGuest first(1);
    const LoadedGuest second(2);
    EXPECT_EQ(TextOf(first.handle(), IDS_GUESTS).loadString(), L"a guest's 1");
    EXPECT_EQ(TextOf(second.handle(), IDS_GUESTS).loadString(), L"a guest's 2");
    EXPECT_EQ(TextOf(second.handle(), IDS_FIRST_GUEST).loadString(), CString());
}

TEST(QoUiLoadString, IsEmptyWithoutAModule) {
    const LoadedGuest guest(1);
    const SwitchTo toGuest(guest.handle());
    EXPECT_EQ(CurrentText(IDS_EVERYWHERE).loadString(), L"of guest 1");
    EXPECT_EQ(TextOf(nullptr, IDS_EVERYWHERE).loadString(), CString());
}

TEST(QoUiLoadString, TakesTheProgramsTextAtFirst) {
    EXPECT_EQ(CurrentText(IDS_EVERYWHERE).loadString(), L"of the program");
}

TEST(QoUiLoadString, TakesTheCurrentModuleUnlessToldOtherwise) {
    const LoadedGuest guest(1);
    const SwitchTo toGuest(guest.handle());
    EXPECT_EQ(CurrentText(IDS_EVERYWHERE).loadString(), L"of guest 1");
}

TEST(QoUiLoadString, HasOneVirtualOperation) {
    TextOf::expectSlots();
}

}  // namespace
