// Out of memory becomes a return value, whichever way it is reported.
#include "NyServer/OutOfMemory.h"

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

TEST(OutOfMemory, IsZeroByEitherReport) {
    EXPECT_EQ(nullptr, zeroIfOutOfMemory([]() -> int* { throw std::bad_alloc(); }));
    EXPECT_EQ(0, zeroIfOutOfMemory([]() -> int { AfxThrowMemoryException(); }));
    EXPECT_EQ(7, zeroIfOutOfMemory([] { return 7; }));
}

TEST(OutOfMemory, OtherExceptionsPass) {
    EXPECT_EQ(CArchiveException::badIndex, archiveCause([] {
                  zeroIfOutOfMemory(
                      []() -> int { AfxThrowArchiveException(CArchiveException::badIndex); });
              }));
}

TEST(OutOfMemory, GivesNoClone) {
    EXPECT_EQ(nullptr, NySe::cloneRecord(Uncopied()));
}

}  // namespace
