#include <gtest/gtest.h>

#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

// Four units with a zero character in the middle.
CString withZero() {
    return CString(_T("ab\0c"), 4);
}

TEST(String, IsEmptyAtFirstAndFromNull) {
    EXPECT_TRUE(CString().IsEmpty());
    EXPECT_EQ(CString(static_cast<LPCWSTR>(nullptr)).GetLength(), 0);
    EXPECT_EQ(CString(static_cast<LPCSTR>(nullptr)).GetLength(), 0);
    EXPECT_EQ(CString().GetString()[0], 0);
}

TEST(String, CountsCodeUnits) {
    EXPECT_EQ(CString(_T("part")).GetLength(), 4);
    EXPECT_EQ(CString(_T("\U0001F600")).GetLength(), 2);
    EXPECT_FALSE(CString(_T(" ")).IsEmpty());
}

TEST(String, TakesAGivenNumberOfCharacters) {
    EXPECT_EQ(CString(_T("abcdef"), 3), _T("abc"));
    EXPECT_EQ(CString("abcdef", 3), _T("abc"));
    EXPECT_EQ(CString(_T("abc"), -1), _T(""));
    EXPECT_EQ(CString("abc", -1), _T(""));
    EXPECT_EQ(CString(WCHAR('x'), 3), _T("xxx"));
    EXPECT_EQ(CString(WCHAR('x')), _T("x"));
    EXPECT_EQ(CString(WCHAR('x'), -2), _T(""));
}

TEST(String, CopiesAreIndependent) {
    CString first(_T("one"));
    CString second = first;
    second += _T("!");
    EXPECT_EQ(first, _T("one"));
    EXPECT_EQ(second, _T("one!"));
}

TEST(String, AssignsFromItsOwnCharacters) {
    CString text(_T("abcdef"));
    text = text.GetString() + 2;
    EXPECT_EQ(text, _T("cdef"));
    text += text.GetString() + 2;
    EXPECT_EQ(text, _T("cdefef"));
    text += text;
    EXPECT_EQ(text, _T("cdefefcdefef"));
}

TEST(String, CopiesKeepZeroCharacters) {
    const CString copy = withZero();
    EXPECT_EQ(unitsOf(copy), unitsOf(withZero()));
    EXPECT_EQ(copy.GetLength(), 4);
    EXPECT_EQ(copy.GetAt(2), 0);
    EXPECT_EQ(copy.GetAt(3), WCHAR('c'));
}

TEST(String, AppendingAStringKeepsZeroCharacters) {
    CString text(_T("x"));
    text += withZero();
    EXPECT_EQ(text.GetLength(), 5);
    EXPECT_EQ((withZero() + withZero()).GetLength(), 8);
    text += WCHAR(0);
    EXPECT_EQ(text.GetLength(), 6);
}

TEST(String, CharactersEndAtTheirZero) {
    CString text(_T("x"));
    text += withZero().GetString();
    EXPECT_EQ(text, _T("xab"));
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(CString(withZero().GetString()).GetLength(), 2);
    EXPECT_EQ((text + withZero().GetString()).GetLength(), 5);
    EXPECT_EQ((withZero().GetString() + text).GetLength(), 5);
}

TEST(String, NarrowTextOfGivenLengthKeepsZeroCharacters) {
    const CString text("ab\0c", 4);
    EXPECT_EQ(unitsOf(text), unitsOf(withZero()));
    EXPECT_EQ(CString("ab\0c").GetLength(), 2);
}

TEST(String, AppendingNullAddsNothing) {
    CString text(_T("x"));
    text += static_cast<LPCWSTR>(nullptr);
    EXPECT_EQ(text, _T("x"));
}

TEST(String, ConcatenatesOnBothSides) {
    const CString middle(_T("-"));
    EXPECT_EQ(_T("a") + middle + _T("b"), _T("a-b"));
    EXPECT_EQ(middle + middle, _T("--"));
}

TEST(String, EmptyRemovesTheText) {
    CString text(_T("x"));
    text.Empty();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text, _T(""));
}

TEST(String, GetAtReadsUpToTheTerminator) {
    const CString text(_T("ab"));
    EXPECT_EQ(text[0], WCHAR('a'));
    EXPECT_EQ(text.GetAt(1), WCHAR('b'));
    EXPECT_EQ(text.GetAt(2), 0);
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { text.GetAt(3); }));
    EXPECT_TRUE(throwsA<CInvalidArgException>([&] { text.GetAt(-1); }));
}

TEST(String, CompareOrdersByCodeUnit) {
    EXPECT_EQ(CString(_T("abc")).Compare(_T("abc")), 0);
    EXPECT_LT(CString(_T("ab")).Compare(_T("abc")), 0);
    EXPECT_GT(CString(_T("abc")).Compare(_T("ab")), 0);
    EXPECT_LT(CString(_T("B")).Compare(_T("a")), 0);
    EXPECT_GT(CString(_T("\uFFFF")).Compare(_T("\U0001F600")), 0);
}

TEST(String, CompareEndsAtAZeroCharacter) {
    EXPECT_EQ(withZero().Compare(_T("ab")), 0);
    EXPECT_EQ(withZero().CompareNoCase(_T("AB")), 0);
    EXPECT_EQ(withZero(), CString(_T("ab\0d"), 4));
}

TEST(String, CompareNoCaseFoldsToLowerCase) {
    EXPECT_EQ(CString(_T("PaRt")).CompareNoCase(_T("pArT")), 0);
    EXPECT_LT(CString(_T("_")).CompareNoCase(_T("A")), 0);
    EXPECT_LT(CString(_T("_")).CompareNoCase(_T("a")), 0);
    EXPECT_LT(CString(_T("A")).CompareNoCase(_T("b")), 0);
    EXPECT_GT(CString(_T("Z")).CompareNoCase(_T("[")), 0);
    EXPECT_GT(CString(_T("abC")).CompareNoCase(_T("AB")), 0);
}

TEST(String, CompareNoCaseFoldsOnlyAToZ) {
    EXPECT_EQ(CString(_T("AZ")).CompareNoCase(_T("az")), 0);
    EXPECT_NE(CString(_T("@")).CompareNoCase(_T("`")), 0);
    EXPECT_NE(CString(_T("[")).CompareNoCase(_T("{")), 0);
    EXPECT_NE(CString(_T("\u00C4")).CompareNoCase(_T("\u00E4")), 0);
    EXPECT_NE(CString(_T("\u0391")).CompareNoCase(_T("\u03B1")), 0);
    EXPECT_NE(CString(_T("\u212A")).CompareNoCase(_T("k")), 0);
}

TEST(String, OperatorsFollowCompare) {
    const CString a(_T("a"));
    EXPECT_TRUE(a == _T("a") && _T("a") == a && a == CString(_T("a")));
    EXPECT_TRUE(a != _T("b") && _T("b") != a && a != CString(_T("b")));
    EXPECT_TRUE(a < CString(_T("b")));
    EXPECT_FALSE(a < CString(_T("B")));
}

TEST(String, FindGivesTheFirstIndexAtOrAfterTheStart) {
    const CString text(_T("abcabc"));
    EXPECT_EQ(text.Find(_T("bc")), 1);
    EXPECT_EQ(text.Find(_T("bc"), 1), 1);
    EXPECT_EQ(text.Find(_T("bc"), 2), 4);
    EXPECT_EQ(text.Find(_T("bc"), 5), -1);
    EXPECT_EQ(text.Find(_T("x")), -1);
    EXPECT_EQ(text.Find(WCHAR('c')), 2);
    EXPECT_EQ(text.Find(WCHAR('c'), 3), 5);
    EXPECT_EQ(text.Find(WCHAR('c'), 6), -1);
    EXPECT_EQ(text.Find(WCHAR('x')), -1);
}

TEST(String, FindTakesAStartBelowZeroAsZero) {
    const CString text(_T("abc"));
    EXPECT_EQ(text.Find(_T("a"), -5), 0);
    EXPECT_EQ(text.Find(WCHAR('a'), -5), 0);
    EXPECT_EQ(text.Find(_T("a"), 100), -1);
}

TEST(String, ReverseFindGivesTheLastIndex) {
    EXPECT_EQ(CString(_T("a/b/c")).ReverseFind(WCHAR('/')), 3);
    EXPECT_EQ(CString(_T("abc")).ReverseFind(WCHAR('/')), -1);
    EXPECT_EQ(CString().ReverseFind(WCHAR('/')), -1);
}

TEST(String, LeftAndRightAreCutToWhatIsThere) {
    const CString text(_T("abcd"));
    EXPECT_EQ(text.Left(2), _T("ab"));
    EXPECT_EQ(text.Left(9), _T("abcd"));
    EXPECT_EQ(text.Left(0), _T(""));
    EXPECT_EQ(text.Left(-1), _T(""));
    EXPECT_EQ(text.Right(2), _T("cd"));
    EXPECT_EQ(text.Right(9), _T("abcd"));
    EXPECT_EQ(text.Right(0), _T(""));
    EXPECT_EQ(text.Right(-1), _T(""));
}

TEST(String, MidIsCutToWhatIsThere) {
    const CString text(_T("abcd"));
    EXPECT_EQ(text.Mid(1), _T("bcd"));
    EXPECT_EQ(text.Mid(4), _T(""));
    EXPECT_EQ(text.Mid(9), _T(""));
    EXPECT_EQ(text.Mid(1, 2), _T("bc"));
    EXPECT_EQ(text.Mid(2, 9), _T("cd"));
    EXPECT_EQ(text.Mid(9, 1), _T(""));
    EXPECT_EQ(text.Mid(-3, 2), _T("ab"));
    EXPECT_EQ(text.Mid(1, -1), _T(""));
    EXPECT_EQ(withZero().Mid(1).GetLength(), 3);
}

TEST(String, GetBufferKeepsTheTextAndMakesRoom) {
    CString text(_T("ab"));
    LPWSTR buffer = text.GetBuffer(10);
    EXPECT_EQ(buffer[0], WCHAR('a'));
    EXPECT_EQ(buffer[2], 0);
    for (int i = 0; i < 10; ++i) buffer[i] = WCHAR('x');
    buffer[10] = 0;
    text.ReleaseBuffer();
    EXPECT_EQ(text, _T("xxxxxxxxxx"));
}

TEST(String, GetBufferWithoutLengthGivesTheTextAsItIs) {
    CString text(_T("abc"));
    text.GetBuffer()[1] = WCHAR('x');
    text.ReleaseBuffer();
    EXPECT_EQ(text, _T("axc"));
}

TEST(String, ReleaseBufferFindsTheEndOrTakesIt) {
    CString text;
    LPWSTR buffer = text.GetBuffer(8);
    buffer[0] = WCHAR('a');
    buffer[1] = 0;
    buffer[2] = WCHAR('b');
    text.ReleaseBuffer(3);
    EXPECT_EQ(text.GetLength(), 3);
    text.GetBuffer(8);
    text.ReleaseBuffer();
    EXPECT_EQ(text, _T("a"));
    EXPECT_EQ(text.GetLength(), 1);
}

TEST(String, GetBufferSetLengthIsExact) {
    CString text(_T("abcdef"));
    text.GetBufferSetLength(2);
    EXPECT_EQ(text, _T("ab"));
    LPWSTR buffer = text.GetBufferSetLength(3);
    buffer[2] = WCHAR('z');
    EXPECT_EQ(text, _T("abz"));
    text.GetBufferSetLength(-1);
    EXPECT_EQ(text.GetLength(), 0);
}

}  // namespace
