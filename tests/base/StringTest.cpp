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

TEST(String, KeepsZeroCharactersOfStringsAndOfGivenLengths) {
    const CString copy = withZero();
    EXPECT_EQ(copy.GetLength(), 4);
    EXPECT_EQ(copy.GetAt(2), 0);
    EXPECT_EQ(copy.GetAt(3), WCHAR('c'));
    EXPECT_EQ(unitsOf(CString("ab\0c", 4)), unitsOf(copy));
    CString text(_T("x"));
    text += copy;
    EXPECT_EQ(text.GetLength(), 5);
    EXPECT_EQ((copy + copy).GetLength(), 8);
    text += WCHAR(0);
    EXPECT_EQ(text.GetLength(), 6);
    EXPECT_EQ(copy.Mid(1).GetLength(), 3);
}

TEST(String, CharactersEndAtTheirZero) {
    CString text(_T("x"));
    text += withZero().GetString();
    EXPECT_EQ(text, _T("xab"));
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(CString(withZero().GetString()).GetLength(), 2);
    EXPECT_EQ(CString("ab\0c").GetLength(), 2);
    EXPECT_EQ((text + withZero().GetString()).GetLength(), 5);
    EXPECT_EQ((withZero().GetString() + text).GetLength(), 5);
}

TEST(String, IsJoinedAndEmptied) {
    CString text(_T("-"));
    EXPECT_EQ(_T("a") + text + _T("b"), _T("a-b"));
    EXPECT_EQ(text + text, _T("--"));
    text += static_cast<LPCWSTR>(nullptr);
    EXPECT_EQ(text, _T("-"));
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

int sign(int number) {
    return (number > 0) - (number < 0);
}

struct Comparison {
    LPCWSTR left;
    LPCWSTR right;
    int sign;
    int signNoCase;
};

TEST(String, ComparesByCodeUnitOrWithAToZFoldedToLowerCase) {
    const Comparison rows[] = {{_T("abc"), _T("abc"), 0, 0},
                               {_T("ab"), _T("abc"), -1, -1},
                               {_T("abc"), _T("ab"), 1, 1},
                               {_T("B"), _T("a"), -1, 1},
                               {_T("\uFFFF"), _T("\U0001F600"), 1, 1},
                               {_T("PaRt"), _T("pArT"), -1, 0},
                               {_T("_"), _T("A"), 1, -1},
                               {_T("_"), _T("a"), -1, -1},
                               {_T("A"), _T("b"), -1, -1},
                               {_T("Z"), _T("["), -1, 1},
                               {_T("abC"), _T("AB"), 1, 1},
                               {_T("AZ"), _T("az"), -1, 0},
                               {_T("@"), _T("`"), -1, -1},
                               {_T("["), _T("{"), -1, -1},
                               {_T("\u00C4"), _T("\u00E4"), -1, -1},
                               {_T("\u0391"), _T("\u03B1"), -1, -1},
                               {_T("\u212A"), _T("k"), 1, 1}};
    for (const Comparison& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(sign(CString(row.left).Compare(row.right)), row.sign);
        EXPECT_EQ(sign(CString(row.left).CompareNoCase(row.right)), row.signNoCase);
    }
}

TEST(String, ComparisonsEndAtAZeroCharacter) {
    EXPECT_EQ(withZero().Compare(_T("ab")), 0);
    EXPECT_EQ(withZero().CompareNoCase(_T("AB")), 0);
    EXPECT_EQ(withZero(), CString(_T("ab\0d"), 4));
}

TEST(String, OperatorsFollowCompare) {
    const CString a(_T("a"));
    EXPECT_TRUE(a == _T("a") && _T("a") == a && a == CString(_T("a")));
    EXPECT_TRUE(a != _T("b") && _T("b") != a && a != CString(_T("b")));
    EXPECT_TRUE(a < CString(_T("b")));
    EXPECT_FALSE(a < CString(_T("B")));
}

TEST(String, FindReturnsTheFirstIndexAtOrAfterTheStart) {
    const CString text(_T("abcabc"));
    EXPECT_EQ(text.Find(_T("bc")), 1);
    EXPECT_EQ(text.Find(_T("bc"), 1), 1);
    EXPECT_EQ(text.Find(_T("bc"), 2), 4);
    EXPECT_EQ(text.Find(_T("bc"), 5), -1);
    EXPECT_EQ(text.Find(_T("x")), -1);
    EXPECT_EQ(text.Find(_T("a"), -5), 0);
    EXPECT_EQ(text.Find(_T("a"), 100), -1);
    EXPECT_EQ(text.Find(WCHAR('c')), 2);
    EXPECT_EQ(text.Find(WCHAR('c'), 3), 5);
    EXPECT_EQ(text.Find(WCHAR('c'), 6), -1);
    EXPECT_EQ(text.Find(WCHAR('x')), -1);
    EXPECT_EQ(text.Find(WCHAR('a'), -5), 0);
}

TEST(String, ReverseFindReturnsTheLastIndex) {
    EXPECT_EQ(CString(_T("a/b/c")).ReverseFind(WCHAR('/')), 3);
    EXPECT_EQ(CString(_T("abc")).ReverseFind(WCHAR('/')), -1);
    EXPECT_EQ(CString().ReverseFind(WCHAR('/')), -1);
}

TEST(String, PartsEndWhereTheStringEnds) {
    const CString text(_T("abcd"));
    const struct {
        int count;
        LPCWSTR left;
        LPCWSTR right;
        LPCWSTR mid;    // from there to the end
        LPCWSTR ofMid;  // so many from the second on
    } rows[] = {{2, _T("ab"), _T("cd"), _T("cd"), _T("bc")},
                {4, _T("abcd"), _T("abcd"), _T(""), _T("bcd")},
                {9, _T("abcd"), _T("abcd"), _T(""), _T("bcd")},
                {0, _T(""), _T(""), _T("abcd"), _T("")},
                {-1, _T(""), _T(""), _T("abcd"), _T("")}};
    for (const auto& row : rows) {
        EXPECT_EQ(text.Left(row.count), row.left) << row.count;
        EXPECT_EQ(text.Right(row.count), row.right) << row.count;
        EXPECT_EQ(text.Mid(row.count), row.mid) << row.count;
        EXPECT_EQ(text.Mid(1, row.count), row.ofMid) << row.count;
    }
    EXPECT_EQ(text.Mid(9, 1), _T(""));
    EXPECT_EQ(text.Mid(-3, 2), _T("ab"));
}

TEST(String, GetBufferKeepsTheTextAndEnlargesTheBuffer) {
    CString text(_T("ab"));
    LPWSTR buffer = text.GetBuffer(10);
    EXPECT_EQ(buffer[0], WCHAR('a'));
    EXPECT_EQ(buffer[2], 0);
    for (int i = 0; i < 10; ++i) buffer[i] = WCHAR('x');
    buffer[10] = 0;
    text.ReleaseBuffer();
    EXPECT_EQ(text, _T("xxxxxxxxxx"));
    text.GetBuffer()[1] = WCHAR('y');
    text.ReleaseBuffer();
    EXPECT_EQ(text, _T("xyxxxxxxxx"));
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
