#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"

namespace {

template <class... Values>
CString formatted(LPCWSTR format, Values... values) {
    CString text(L"before");
    text.Format(format, values...);
    return text;
}

TEST(StringFormat, FollowsPrintf) {
    EXPECT_EQ(formatted(L"%d|%5d|%-5d|%05u|%x|%.2f|%%", -3, 42, 42, 42u, 255, 1.5),
              L"-3|   42|42   |00042|ff|1.50|%");
    EXPECT_EQ(formatted(L"<%s> %c", L"wide \u00E9\u4E2D", L'x'), L"<wide \u00E9\u4E2D> x");
    EXPECT_EQ(formatted(L"%S", "narrow"), L"narrow");
    EXPECT_EQ(formatted(L"%s", L"").GetLength(), 0);
}

TEST(StringFormat, ReturnsTextsOfAnyLength) {
    for (const int length : {1, 255, 256, 4096, 100000}) {
        const CString text = formatted(L"%s.", CString(L'x', length).GetString());
        EXPECT_EQ(text.GetLength(), length + 1);
        EXPECT_EQ(text.GetAt(length), L'.');
    }
}

}  // namespace
