// A named pipe in place of a file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "NyServer/base/port/Port.h"
#include "tests/support/TempFile.h"

namespace {

TEST(PipeFile, IsOpenedWithoutWaitingForAnotherProcess) {
    const TempFolder folder;
    const WideText path = folder.path("pipe");
    ASSERT_EQ(::mkfifo(port::toUtf8(path.data(), path.size()).c_str(), 0600), 0);
    EXPECT_EQ(port::openFile(path.c_str(), GENERIC_WRITE, OPEN_EXISTING), port::kNoFile);
    const port::FileHandle reader = port::openFile(path.c_str(), GENERIC_READ, OPEN_EXISTING);
    ASSERT_NE(reader, port::kNoFile);
    EXPECT_EQ(::fcntl(reader, F_GETFL) & O_NONBLOCK, 0) << "reads wait";
    port::closeFile(reader);
}

TEST(TruncatedFile, IsNotOpenedByReaders) {
    TempFolder folder;
    const WideText path = folder.file("file", "old");
    EXPECT_EQ(port::openFile(path.c_str(), GENERIC_READ, TRUNCATE_EXISTING), port::kNoFile);
    EXPECT_EQ(folder.content("file"), "old");
}

}  // namespace
