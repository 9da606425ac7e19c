#include <afxwin.h>

#include <gtest/gtest.h>

#include "tests/support/MessageBoxWatch.h"

namespace {

TEST(AfxMessageBox, ShowsTheTextUnderTheProgramsName) {
    MessageBoxWatch watch(IDOK);
    EXPECT_EQ(AfxMessageBox(L"Something went wrong"), IDOK);
    ASSERT_EQ(watch.boxes().size(), 1u);
    EXPECT_EQ(watch.boxes()[0].text, L"Something went wrong");
    EXPECT_EQ(watch.boxes()[0].title, L"base_tests");
}

TEST(AfxMessageBox, GivesTheButtonChosen) {
    MessageBoxWatch watch(IDNO);
    EXPECT_EQ(AfxMessageBox(L"Sure?", MB_YESNO), IDNO);
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
