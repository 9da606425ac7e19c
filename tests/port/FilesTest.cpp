#include <gtest/gtest.h>

#include <cstdint>

#include "NyServer/base/port/Port.h"
#include "tests/support/TempFile.h"

namespace {

class PortFile : public testing::Test {
  protected:
    ~PortFile() override {
        if (m_file != port::kNoFile) port::closeFile(m_file);
    }
    bool open(DWORD access, DWORD disposition) {
        return (m_file = port::openFile(m_path.c_str(), access, disposition)) != port::kNoFile;
    }

    TempFolder m_folder;
    WideText m_path = m_folder.file("f", "content");
    port::FileHandle m_file = port::kNoFile;
};

TEST_F(PortFile, IsNoFolder) {
    m_path = m_folder.path("");
    EXPECT_FALSE(open(GENERIC_READ, OPEN_EXISTING));
}

TEST_F(PortFile, IsEmptiedByCreationUnlessSomeoneReadsIt) {
    ASSERT_TRUE(open(GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(port::openFile(m_path.c_str(), GENERIC_WRITE, CREATE_ALWAYS), port::kNoFile);
    EXPECT_EQ(port::sizeOfFile(m_file), 7);
    port::closeFile(m_file);
    ASSERT_TRUE(open(GENERIC_WRITE, CREATE_ALWAYS));
    EXPECT_EQ(port::sizeOfFile(m_file), 0);
}

TEST_F(PortFile, HasPositionsAndASizeOf32Bits) {
    constexpr long kCut = static_cast<std::int32_t>(0xC0000000u);
    std::filesystem::resize_file(std::filesystem::path(m_path), 0xC0000000u);
    ASSERT_TRUE(open(GENERIC_READ, OPEN_EXISTING));
    EXPECT_EQ(port::sizeOfFile(m_file), kCut);
    EXPECT_EQ(port::seekFile(m_file, 0, FILE_END), kCut);
    EXPECT_EQ(port::seekFile(m_file, static_cast<long>(0xFFFFFFFFu), FILE_END), kCut - 1);
    char last = 'x';
    EXPECT_EQ(port::readFile(m_file, &last, 1), 1) << "before the end";
    EXPECT_EQ(port::seekFile(m_file, 0, 3), -1) << "no such origin";
}

}  // namespace
