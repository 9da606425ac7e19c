#include "NyServer/records/NySeMessage.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"

namespace {

NySeMessage message(const CString& text) {
    NySeMessage one;
    one.setStrMessage(text);
    return one;
}

TEST(NySeMessage, StartsEmpty) {
    EXPECT_EQ(CString(), NySeMessage().getStrMessage());
}

TEST(NySeMessage, CopiesItsText) {
    const NySeMessage copy(message(_T("saved")));
    EXPECT_EQ(CString("saved"), copy.getStrMessage());
}

TEST(NySeMessage, HasNoOrderUnderAnyKeyWhateverTheTexts) {
    const NySeMessage one = message(_T("a"));
    for (const short key : {-1, 0, 1, 2, 3, 99}) {
        EXPECT_EQ(QoSort::noOrder, one.vCompareTo(message(_T("a")), key)) << key;
        EXPECT_EQ(QoSort::noOrder, one.vCompareTo(message(_T("b")), key)) << key;
        EXPECT_EQ(QoSort::equal, one.vCompareTo(one, key)) << key;
    }
}

TEST(NySeMessage, EmptyMessageTravelsAsTheEmptyString) {
    EXPECT_EQ(hex("FFFEFF00"), toHex(stored([](CArchive& ar) { NySeMessage().Serialize(ar); })));
}

}  // namespace
