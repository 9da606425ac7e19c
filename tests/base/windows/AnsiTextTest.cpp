#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"

namespace {

TEST(AnsiText, ConvertsByTheActiveCodePage) {
    for (int byte = 1; byte < 256; ++byte) {
        const char narrow = static_cast<char>(byte);
        WCHAR wide[4];
        const int length = ::MultiByteToWideChar(CP_ACP, 0, &narrow, 1, wide, 4);
        EXPECT_EQ(unitsOf(CString(&narrow, 1)), unitsOf(CString(wide, length))) << byte;
    }
}

}  // namespace
