#include "NyServer/records/NySeConnection.h"

#include <gtest/gtest.h>

#include "tests/support/ArchiveBytes.h"
#include "tests/support/CStringPrinter.h"

namespace {

NySeConnection connection(const CString& text, LONG id, LONG refCount = 0) {
    NySeConnection one;
    one.setStrConnection(text);
    one.setId(id);
    one.setRefCount(refCount);
    return one;
}

TEST(NySeConnection, StartsEmptyAtZero) {
    EXPECT_EQ(CString(), NySeConnection().getStrConnection());
    EXPECT_EQ(0, NySeConnection().getId());
    EXPECT_EQ(0, NySeConnection().getRefCount());
}

TEST(NySeConnection, KeepsAndCopiesEveryField) {
    const NySeConnection copy(connection(_T("A"), 1, 2));
    EXPECT_EQ(CString("A"), copy.getStrConnection());
    EXPECT_EQ(1, copy.getId());
    EXPECT_EQ(2, copy.getRefCount());
}

TEST(NySeConnection, TravelsInTheOrderOfItsFields) {
    NySeConnection one = connection(_T("A"), 1, 2);
    EXPECT_EQ(hex("FFFEFF01 4100 01000000 02000000"),
              toHex(stored([&](CArchive& ar) { one.Serialize(ar); })));
}

TEST(NySeConnection, KeyOneComparesIds) {
    EXPECT_EQ(QoSort::equal, connection(_T("a"), 1).vCompareTo(connection(_T("b"), 1), 1));
    EXPECT_EQ(QoSort::before, connection(_T("b"), -1).vCompareTo(connection(_T("a"), 1), 1));
    EXPECT_EQ(QoSort::after, connection(_T("a"), 2).vCompareTo(connection(_T("b"), 1), 1));
}

TEST(NySeConnection, KeyTwoComparesStringsWithoutLetterCase) {
    EXPECT_EQ(QoSort::equal, connection(_T("a"), 1).vCompareTo(connection(_T("A"), 2), 2));
    EXPECT_EQ(QoSort::before, connection(_T("a"), 2).vCompareTo(connection(_T("B"), 1), 2));
    EXPECT_EQ(QoSort::after, connection(_T("b"), 1).vCompareTo(connection(_T("A"), 2), 2));
    EXPECT_EQ(QoSort::noOrder, connection(_T("a"), 1).vCompareTo(connection(_T("a"), 1), 3));
}

}  // namespace
