#include <gtest/gtest.h>

#include <afx.h>

#include "tests/support/CStringPrinter.h"
#include "tests/support/Thrown.h"

namespace {

// Every one of these is thrown inside the base module and caught here by its type.

TEST(Exceptions, AreCaughtByTheirType) {
    EXPECT_TRUE(throwsA<CMemoryException>([] { AfxThrowMemoryException(); }));
    EXPECT_TRUE(throwsA<CNotSupportedException>([] { AfxThrowNotSupportedException(); }));
    EXPECT_TRUE(throwsA<CInvalidArgException>([] { AfxThrowInvalidArgException(); }));
    EXPECT_TRUE(throwsA<CArchiveException>([] { AfxThrowArchiveException(0); }));
    EXPECT_TRUE(throwsA<CFileException>([] { AfxThrowFileException(0); }));
}

TEST(Exceptions, AreCaughtByTheirBases) {
    EXPECT_TRUE(throwsA<CSimpleException>([] { AfxThrowMemoryException(); }));
    EXPECT_TRUE(throwsA<CSimpleException>([] { AfxThrowNotSupportedException(); }));
    EXPECT_TRUE(throwsA<CSimpleException>([] { AfxThrowInvalidArgException(); }));
    EXPECT_TRUE(throwsA<CException>([] { AfxThrowArchiveException(0); }));
    EXPECT_TRUE(throwsA<CException>([] { AfxThrowFileException(0); }));
}

TEST(Exceptions, AreNotCaughtByAnotherType) {
    const auto nested = [] { throwsA<CFileException>([] { AfxThrowArchiveException(0); }); };
    EXPECT_TRUE(throwsA<CArchiveException>(nested));
    const auto simple = [] { throwsA<CSimpleException>([] { AfxThrowFileException(0); }); };
    EXPECT_TRUE(throwsA<CFileException>(simple));
}

TEST(Exceptions, KnowTheirClassWhenCaughtByABase) {
    try {
        AfxThrowArchiveException(CArchiveException::badIndex);
    } catch (CException* thrown) {
        EXPECT_TRUE(thrown->IsKindOf(RUNTIME_CLASS(CArchiveException)));
        EXPECT_TRUE(thrown->IsKindOf(RUNTIME_CLASS(CException)));
        EXPECT_FALSE(thrown->IsKindOf(RUNTIME_CLASS(CSimpleException)));
        EXPECT_FALSE(thrown->IsKindOf(RUNTIME_CLASS(CFileException)));
        EXPECT_STREQ(thrown->GetRuntimeClass()->m_lpszClassName, "CArchiveException");
        thrown->Delete();
    }
}

TEST(Exceptions, MemoryExceptionsCanBeThrownAgainAndAgain) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(throwsA<CMemoryException>([] { AfxThrowMemoryException(); }));
    }
}

TEST(Exceptions, ArchiveExceptionsCarryCauseAndName) {
    try {
        AfxThrowArchiveException(CArchiveException::badSchema, _T("name"));
    } catch (CArchiveException* thrown) {
        EXPECT_EQ(thrown->m_cause, CArchiveException::badSchema);
        EXPECT_EQ(thrown->m_strFileName, _T("name"));
        thrown->Delete();
    }
}

TEST(Exceptions, FileExceptionsCarryCauseErrorAndName) {
    try {
        AfxThrowFileException(CFileException::diskFull, 112, _T("name"));
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

TEST(Exceptions, ArchiveCausesKeepTheirNumbers) {
    const int causes[] = {CArchiveException::none,      CArchiveException::genericException,
                          CArchiveException::readOnly,  CArchiveException::endOfFile,
                          CArchiveException::writeOnly, CArchiveException::badIndex,
                          CArchiveException::badClass,  CArchiveException::badSchema};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(causes[i], i);
}

TEST(Exceptions, FileCausesKeepTheirNumbers) {
    const int causes[] = {CFileException::none,
                          CFileException::genericException,
                          CFileException::fileNotFound,
                          CFileException::badPath,
                          CFileException::tooManyOpenFiles,
                          CFileException::accessDenied,
                          CFileException::invalidFile,
                          CFileException::removeCurrentDir,
                          CFileException::directoryFull,
                          CFileException::badSeek,
                          CFileException::hardIO,
                          CFileException::sharingViolation,
                          CFileException::lockViolation,
                          CFileException::diskFull,
                          CFileException::endOfFile};
    for (int i = 0; i < 15; ++i) EXPECT_EQ(causes[i], i);
}

}  // namespace
