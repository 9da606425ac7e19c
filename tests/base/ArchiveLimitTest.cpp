#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/base/TestRecords.h"
#include "tests/support/Thrown.h"

namespace {

TEST(ArchiveLimit, NumbersEndAt3ffffffe) {
    if (std::getenv("NY_SLOW_TESTS") == nullptr) {
        GTEST_SKIP() << "Counts through a billion numbers; set NY_SLOW_TESTS to run it.";
    }
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    for (DWORD i = 0; i < 0x3FFFFFFE; ++i) ar.MapObject(nullptr);
    EXPECT_EQ(archiveCause([&] { ar.MapObject(nullptr); }), CArchiveException::badIndex);
    Foo foo;
    EXPECT_EQ(archiveCause([&] { ar << &foo; }), CArchiveException::badIndex);
}

}  // namespace
