#include <afx.h>

#include <gtest/gtest.h>

namespace {

TEST(String, ConvertsNarrowCharactersByLatin1) {
    for (int byte = 0; byte < 256; ++byte) {
        const char narrow = static_cast<char>(byte);
        const CString text(&narrow, 1);
        ASSERT_EQ(text.GetLength(), 1);
        EXPECT_EQ(text[0], byte);
    }
}

}  // namespace
