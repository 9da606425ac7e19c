#include <gtest/gtest.h>

#include <afx.h>

#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

// Each of these is thrown inside the base module and caught here by its type.

void throwArchive() {
    AfxThrowArchiveException(CArchiveException::badSchema, _T("name"));
}
void throwFile() {
    AfxThrowFileException(CFileException::diskFull, 112, _T("name"));
}

TEST(Exceptions, AreCaughtByTheirTypeAgainAndAgain) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(throwsA<CMemoryException>(AfxThrowMemoryException));
    EXPECT_TRUE(throwsA<CNotSupportedException>(AfxThrowNotSupportedException));
    EXPECT_TRUE(throwsA<CInvalidArgException>(AfxThrowInvalidArgException));
    EXPECT_TRUE(throwsA<CArchiveException>(throwArchive));
    EXPECT_TRUE(throwsA<CFileException>(throwFile));
}

TEST(Exceptions, AreCaughtByTheirBases) {
    for (const auto thrower :
         {AfxThrowMemoryException, AfxThrowNotSupportedException, AfxThrowInvalidArgException}) {
        EXPECT_TRUE(throwsA<CSimpleException>(thrower));
        EXPECT_TRUE(throwsA<CException>(thrower));
    }
    EXPECT_TRUE(throwsA<CException>(throwArchive));
    EXPECT_TRUE(throwsA<CException>(throwFile));
}

TEST(Exceptions, AreNotCaughtByAnotherType) {
    EXPECT_TRUE(throwsA<CArchiveException>([] { throwsA<CFileException>(throwArchive); }));
    EXPECT_TRUE(throwsA<CFileException>([] { throwsA<CSimpleException>(throwFile); }));
}

TEST(Exceptions, HaveTheirClassWhenCaughtByABase) {
    try {
        throwArchive();
    } catch (CException* thrown) {
        EXPECT_TRUE(thrown->IsKindOf(RUNTIME_CLASS(CArchiveException)));
        EXPECT_TRUE(thrown->IsKindOf(RUNTIME_CLASS(CException)));
        EXPECT_FALSE(thrown->IsKindOf(RUNTIME_CLASS(CSimpleException)));
        EXPECT_FALSE(thrown->IsKindOf(RUNTIME_CLASS(CFileException)));
        EXPECT_STREQ(thrown->GetRuntimeClass()->m_lpszClassName, "CArchiveException");
        thrown->Delete();
    }
}

TEST(Exceptions, CarryCauseErrorAndName) {
    try {
        throwArchive();
    } catch (CArchiveException* thrown) {
        EXPECT_EQ(thrown->m_cause, CArchiveException::badSchema);
        EXPECT_EQ(thrown->m_strFileName, _T("name"));
        thrown->Delete();
    }
    try {
        throwFile();
    } catch (CFileException* thrown) {
        EXPECT_EQ(thrown->m_cause, CFileException::diskFull);
        EXPECT_EQ(thrown->m_lOsError, 112);
        EXPECT_EQ(thrown->m_strFileName, _T("name"));
        thrown->Delete();
    }
}

TEST(Exceptions, CarryNothingByDefault) {
    const CArchiveException archive;
    EXPECT_EQ(archive.m_cause, CArchiveException::none);
    EXPECT_EQ(archive.m_strFileName, _T(""));
    const CFileException file;
    EXPECT_EQ(file.m_cause, CFileException::none);
    EXPECT_EQ(file.m_lOsError, -1);
    EXPECT_EQ(file.m_strFileName, _T(""));
}

void expectCountedFromZero(std::initializer_list<int> causes) {
    for (int i = 0; const int cause : causes) EXPECT_EQ(cause, i++);
}

TEST(Exceptions, CausesKeepTheirNumbers) {
    using A = CArchiveException;
    expectCountedFromZero({A::none, A::genericException, A::readOnly, A::endOfFile, A::writeOnly,
                           A::badIndex, A::badClass, A::badSchema});
    using F = CFileException;
    expectCountedFromZero({F::none, F::genericException, F::fileNotFound, F::badPath,
                           F::tooManyOpenFiles, F::accessDenied, F::invalidFile,
                           F::removeCurrentDir, F::directoryFull, F::badSeek, F::hardIO,
                           F::sharingViolation, F::lockViolation, F::diskFull, F::endOfFile});
}

}  // namespace
