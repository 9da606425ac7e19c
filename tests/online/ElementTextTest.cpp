#include "NyServer/online/ElementText.h"

#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"

namespace {

TEST(ElementText, IsCutOutBetweenTheFirstTags) {
    const struct {
        const char* text;
        const char* tag;
        const char* found;
    } rows[] = {
        {"<VERSION>2.1</VERSION>", "VERSION", "2.1"},
        {"before<VERSION>2.1</VERSION>after", "VERSION", "2.1"},
        {"<A><VERSION>\n 2.1 \n</VERSION></A>", "VERSION", "\n 2.1 \n"},
        {"<VERSION></VERSION>", "VERSION", ""},

        // With attributes, which stay in front.
        {"<VERSION a=\"1\">2.1</VERSION>", "VERSION", "a=\"1\">2.1"},
        {"<VERSION >2.1</VERSION>", "VERSION", ">2.1"},
        {"<VERSION  a>2.1</VERSION>", "VERSION", " a>2.1"},
        {"<VERSION\na>2.1</VERSION>", "VERSION", ""},

        // The tag without attributes comes first, wherever it stands.
        {"<V a>1</V><V>2</V>", "V", "2"},
        {"</V><V>2</V>", "V", "2"},

        // The first occurrence only, and no nesting.
        {"<V>1</V><V>2</V>", "V", "1"},
        {"<V a>1</V><V b>2</V>", "V", "a>1"},
        {"<V>1<V>2</V>3</V>", "V", "1<V>2"},
        {"<V><V>", "V", ""},

        // Something is missing, or not quite the tag.
        {"", "VERSION", ""},
        {"2.1", "VERSION", ""},
        {"<VERSION>2.1", "VERSION", ""},
        {"<VERSION a=\"1\">2.1", "VERSION", ""},
        {"2.1</VERSION>", "VERSION", ""},
        {"</VERSION><VERSION>2.1", "VERSION", ""},
        {"<VERSION>2.1</VERSION", "VERSION", ""},
        {"<VERSION>2.1</VERSIONS>", "VERSION", ""},
        {"<VERSIONS>2.1</VERSION>", "VERSION", ""},
        {"<version>2.1</version>", "VERSION", ""},
        {"<VERSION", "VERSION", ""},
        {"<VERSION>2.1</ VERSION>", "VERSION", ""},
        // A tag without attributes that is not closed hides one with attributes that is.
        {"<V a>1</V><V>2", "V", ""},

        {"<>2.1</>", "", "2.1"},
        {"<a b>2.1</a b>", "a b", "2.1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CString(row.found), elementText(row.text, row.tag)) << row.text;
    }
}

TEST(ElementText, MayHoldAnyCharacter) {
    const WCHAR units[] = {'<', 'V', '>', 0x00E9, 0, 0xD83D, 0xDE00, '<', '/', 'V', '>'};
    EXPECT_EQ(unitsOf(CString(units + 3, 4)), unitsOf(elementText(CString(units, 11), _T("V"))));
}

}  // namespace
