// What nyctl makes of the words of a command line.
#include <gtest/gtest.h>

#include "apps/nyctl/ShareModeOption.h"
#include "apps/nyctl/UnknownCommand.h"

using namespace apps::nyctl;

namespace {

TEST(NyctlShareMode, IsANumberOrWordsJoinedByPlus) {
    const std::pair<const char*, unsigned> rows[] = {
        {"24", 0x18},
        {"0x19", 0x19},
        {"0xFFFFFFFF", 0xFFFFFFFF},
        {"0", 0},
        {"none", 0},
        {"access1", 0x01},
        {"access2", 0x02},
        {"exclude1", 0x08},
        {"access1+exclude2", 0x11},
        {"exclude2", 0x10},
        {"exclude2+access1", 0x11},
        {"access1+access1", 0x01},
        {"exclusive", 0x1B},
        {"none+access2", 0x02},
    };
    for (const auto& [text, mode] : rows) EXPECT_EQ(mode, parseShareMode(text)) << text;
}

TEST(NyctlShareMode, IsReadAsItIsPrinted) {
    for (unsigned mode = 0; mode < 0x20; ++mode) {
        EXPECT_EQ(mode & ~4U, parseShareMode(NySe::shareModeWords(mode)));
        EXPECT_EQ(mode, parseShareMode(shareModeDigits(mode)));
    }
}

TEST(NyctlShareMode, IsNoOtherText) {
    for (const char* text :
         {"", "+", "access", "Access1", "access1+", "+access1", "access1++access2",
          "access1,access2", "access1 ", "-1", "0x100000000", "1+access1"})
        EXPECT_EQ(std::nullopt, parseShareMode(text)) << text;
}

TEST(NyctlUnknownCommand, IsComparedByTheCharactersToChange) {
    EXPECT_EQ(0U, editDistance("lock", "lock"));
    EXPECT_EQ(4U, editDistance("", "lock"));
    EXPECT_EQ(4U, editDistance("lock", ""));
    EXPECT_EQ(1U, editDistance("lock", "locks"));
    EXPECT_EQ(1U, editDistance("lock", "lick"));
    EXPECT_EQ(2U, editDistance("lock", "unlock"));
    EXPECT_EQ(3U, editDistance("kitten", "sitting"));
}

}  // namespace
