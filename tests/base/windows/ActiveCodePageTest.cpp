#include <afx.h>

#include <gtest/gtest.h>

namespace {

// The units that one character of the active code page is.
std::wstring unitsOf(char narrow) {
    wchar_t wide[4];
    const int length = ::MultiByteToWideChar(CP_ACP, 0, &narrow, 1, wide, 4);
    return {wide, static_cast<size_t>(length)};
}

TEST(String, ConvertsNarrowCharactersByTheActiveCodePage) {
    for (int byte = 0; byte < 256; ++byte) {
        const char narrow = static_cast<char>(byte);
        const CString text(&narrow, 1);
        EXPECT_EQ(std::wstring(text.GetString(), static_cast<size_t>(text.GetLength())),
                  unitsOf(narrow))
            << byte;
    }
}

}  // namespace
