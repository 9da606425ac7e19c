#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"

namespace {

TEST(AnsiText, MapsEachByteToItself) {
    for (int byte = 0; byte < 256; ++byte) {
        const char narrow = static_cast<char>(byte);
        const CString text(&narrow, 1);
        ASSERT_EQ(text.GetLength(), 1);
        EXPECT_EQ(int{text.GetAt(0)}, byte);
    }
}

}  // namespace
