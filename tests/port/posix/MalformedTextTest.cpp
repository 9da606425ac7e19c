#include <gtest/gtest.h>

#include <algorithm>

#include "NyServer/base/port/Port.h"

namespace {

// Each would be a character to a reader that takes the bits as they come.
TEST(Utf8, HasOnlyReplacementsForWhatIsNoCharacter) {
    for (const std::string bytes :
         {"\x80", "\xBF", "\xC1\x81", "\xE0\x81\x81", "\xE0\x9F\xBF", "\xF0\x80\x81\x81",
          "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xFF"}) {
        const std::u16string wide = port::fromUtf8(bytes.data(), bytes.size());
        EXPECT_FALSE(wide.empty());
        EXPECT_TRUE(std::ranges::all_of(wide, [](char16_t unit) { return unit == 0xFFFD; }));
    }
}

// The bytes after the end are not read.
TEST(Utf8, HasOneReplacementForACharacterThatIsCut) {
    for (const std::string whole : {"\xC2\x80", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
        for (size_t length = 1; length < whole.size(); ++length) {
            EXPECT_EQ(port::fromUtf8(whole.data(), length), u"\xFFFD") << length;
            const std::string continued = whole.substr(0, length) + "a";
            EXPECT_EQ(port::fromUtf8(continued.data(), continued.size()),
                      u"\xFFFD"
                      u"a")
                << length;
        }
    }
}

}  // namespace
