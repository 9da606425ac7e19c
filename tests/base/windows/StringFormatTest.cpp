#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"

namespace {

TEST(StringFormat, FollowsPrintf) {
    CString text;
    text.Format(L"%d|%5d|%-5d|%05u|%x|%.2f|%%", -3, 42, 42, 42u, 255, 1.5);
    EXPECT_EQ(text, L"-3|   42|42   |00042|ff|1.50|%");
}

TEST(StringFormat, TakesWideStringsForS) {
    CString text;
    text.Format(L"<%s> %c", L"wide \u00E9\u4E2D", L'x');
    EXPECT_EQ(text, L"<wide \u00E9\u4E2D> x");
}

TEST(StringFormat, TakesNarrowStringsForCapitalS) {
    CString text;
    text.Format(L"%S", "narrow");
    EXPECT_EQ(text, L"narrow");
}

TEST(StringFormat, ReplacesTheText) {
    CString text(L"before");
    text.Format(L"%s", L"");
    EXPECT_EQ(text, L"");
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(StringFormat, GivesTextsOfAnyLength) {
    for (const int length : {1, 255, 256, 4096, 100000}) {
        CString text;
        text.Format(L"%s.", CString(L'x', length).GetString());
        EXPECT_EQ(text.GetLength(), length + 1);
        EXPECT_EQ(text.GetAt(length), L'.');
    }
}

}  // namespace
