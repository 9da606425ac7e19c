#include <gtest/gtest.h>

#include <string>

#include "NyServer/base/port/Port.h"
#include "tests/support/WideText.h"

namespace {

std::string toUtf8(const WideText& text) {
    return port::toUtf8(text.data(), text.size());
}

WideText fromUtf8(const std::string& text) {
    return port::fromUtf8(text.data(), text.size());
}

// The first and the last character of each length.
TEST(Utf8, HasOneToFourBytesOfACharacter) {
    const std::pair<WideText, std::string> rows[] = {
        {{}, ""},
        {{0x41}, "A"},
        {{0x7F}, "\x7F"},
        {{0x80}, "\xC2\x80"},
        {{0x7FF}, "\xDF\xBF"},
        {{0x800}, "\xE0\xA0\x80"},
        {{0xD7FF}, "\xED\x9F\xBF"},
        {{0xE000}, "\xEE\x80\x80"},
        {{0xFFFF}, "\xEF\xBF\xBF"},
        {{0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
        {{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
        {{0x61, 0xD83D, 0xDE00, 0x62},
         "a\xF0\x9F\x98\x80"
         "b"},
    };
    for (const auto& [wide, bytes] : rows) {
        EXPECT_EQ(toUtf8(wide), bytes);
        EXPECT_EQ(fromUtf8(bytes), wide) << bytes;
    }
}

TEST(Utf8, HasAReplacementForASurrogateWithoutItsOther) {
    const std::string replacement = "\xEF\xBF\xBD";
    const std::pair<WideText, std::string> rows[] = {
        {{0xD800}, replacement},
        {{0xDFFF}, replacement},
        {{0xDC00, 0x61}, replacement + "a"},
        {{0xD800, 0x61}, replacement + "a"},
        {{0xD800, 0xD800, 0xDC00}, replacement + "\xF0\x90\x80\x80"},
    };
    for (const auto& [wide, bytes] : rows) EXPECT_EQ(toUtf8(wide), bytes);
}

TEST(SystemText, IsWholeWithItsTerminatorOrNothing) {
    char target[4];
    for (int size = -1; size <= 3; ++size)
        EXPECT_FALSE(port::toSystemText(_T("abc"), target, size)) << size;
    ASSERT_TRUE(port::toSystemText(_T("abc"), target, 4));
    EXPECT_STREQ(target, "abc");
}

}  // namespace
