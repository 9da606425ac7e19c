// Exceptions become results.
#include "NyServer/detail/ExceptionBoundary.h"

#include <gtest/gtest.h>

#include "NyServer/records/NySeMessage.h"
#include "tests/support/Thrown.h"

namespace {

// Its copies find no memory, as the class library reports it.
class Uncopied : public NySeMessage {
  public:
    Uncopied() = default;
    Uncopied(const Uncopied&) : NySeMessage() { AfxThrowMemoryException(); }
};

TEST(ResultOr, ReturnsTheResultOfTheAction) {
    EXPECT_EQ(NySe::resultOr(CString(), [] { return CString(_T("answer")); }), _T("answer"));
    EXPECT_TRUE(NySe::succeeds([] {}));
}

TEST(ResultOr, ReturnsTheFailureForAnyException) {
    EXPECT_EQ(NySe::resultOr(7, []() -> int { throw std::bad_alloc(); }), 7);
    EXPECT_EQ(NySe::resultOr(7, []() -> int { AfxThrowMemoryException(); }), 7);
    EXPECT_EQ(NySe::resultOr(7, []() -> int { throw 8; }), 7);
    EXPECT_FALSE(NySe::succeeds([] { throw 8; }));
}

TEST(OutOfMemory, IsZeroByEitherReport) {
    EXPECT_EQ(nullptr, NySe::zeroIfOutOfMemory([]() -> int* { throw std::bad_alloc(); }));
    EXPECT_EQ(0, NySe::zeroIfOutOfMemory([]() -> int { AfxThrowMemoryException(); }));
    EXPECT_EQ(7, NySe::zeroIfOutOfMemory([] { return 7; }));
}

TEST(OutOfMemory, OtherExceptionsPass) {
    EXPECT_EQ(CArchiveException::badIndex, archiveCause([] {
                  NySe::zeroIfOutOfMemory(
                      []() -> int { AfxThrowArchiveException(CArchiveException::badIndex); });
              }));
}

TEST(ArchiveErrors, EndTheAction) {
    bool isDone = false;
    NySe::dropArchiveErrors([&] {
        AfxThrowArchiveException(CArchiveException::badIndex);
        isDone = true;
    });
    NySe::dropArchiveErrors([&] {
        AfxThrowFileException(CFileException::endOfFile);
        isDone = true;
    });
    EXPECT_FALSE(isDone);
}

TEST(ArchiveErrors, OtherExceptionsPass) {
    EXPECT_FALSE(NySe::succeeds([] { NySe::dropArchiveErrors([] { throw 8; }); }));
    EXPECT_FALSE(
        NySe::succeeds([] { NySe::dropArchiveErrors([] { AfxThrowMemoryException(); }); }));
}

TEST(OutOfMemory, ReturnsNoClone) {
    EXPECT_EQ(nullptr, NySe::cloneRecord(Uncopied()));
}

}  // namespace
