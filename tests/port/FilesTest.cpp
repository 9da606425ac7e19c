// Files: the dispositions, positions and sizes.
#include <gtest/gtest.h>

#include <cstdint>

#include "NyServer/base/port/Port.h"
#include "tests/support/TempFile.h"

namespace {

// Closed when it is destroyed.
class OpenFile {
  public:
    OpenFile(const WideText& path, DWORD access, DWORD disposition)
        : m_file(port::openFile(path.c_str(), access, disposition)) {}
    ~OpenFile() {
        if (isOpen()) port::closeFile(m_file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return m_file != port::kNoFile; }
    port::FileHandle get() const { return m_file; }
    void write(std::string_view text) const {
        EXPECT_EQ(port::writeFile(m_file, text.data(), static_cast<DWORD>(text.size())),
                  static_cast<int>(text.size()));
    }
    std::string read() const {
        char buffer[64];
        const int count = port::readFile(m_file, buffer, sizeof buffer);
        return count < 0 ? "failed" : std::string(buffer, static_cast<std::size_t>(count));
    }

  private:
    port::FileHandle m_file;
};

constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;

class PortFiles : public testing::Test {
  protected:
    // What opening gives for a file with this name: its content afterwards.
    std::string opened(std::string_view name, DWORD access, DWORD disposition) {
        const bool isOpen = OpenFile(m_folder.path(name), access, disposition).isOpen();
        const std::string content = m_folder.has(name) ? m_folder.content(name) : "none";
        return (isOpen ? "open " : "refused ") + content;
    }

    TempFolder m_folder;
};

TEST_F(PortFiles, AreCreatedAndTruncatedByTheDisposition) {
    const struct {
        DWORD disposition;
        const char* existing;
        const char* missing;
    } rows[] = {
        {0, "refused old", "refused none"}, {CREATE_NEW, "refused old", "open "},
        {CREATE_ALWAYS, "open ", "open "},  {OPEN_EXISTING, "open old", "refused none"},
        {OPEN_ALWAYS, "open old", "open "}, {TRUNCATE_EXISTING, "open ", "refused none"},
        {6, "refused old", "refused none"},
    };
    for (const auto& row : rows) {
        const std::string number = std::to_string(row.disposition);
        m_folder.file("old" + number, "old");
        EXPECT_EQ(opened("old" + number, kBoth, row.disposition), row.existing) << number;
        EXPECT_EQ(opened("new" + number, kBoth, row.disposition), row.missing) << number;
    }
}

TEST_F(PortFiles, ThatAreFoldersOrNowhereAreRefused) {
    EXPECT_FALSE(OpenFile(m_folder.path(""), GENERIC_READ, OPEN_EXISTING).isOpen());
    EXPECT_FALSE(OpenFile(m_folder.path("no/file"), kBoth, CREATE_ALWAYS).isOpen());
}

TEST_F(PortFiles, AreReadAndWrittenAtTheirPosition) {
    const OpenFile file(m_folder.path("file"), kBoth, CREATE_NEW);
    file.write("0123456789");
    EXPECT_EQ(port::sizeOfFile(file.get()), 10);
    EXPECT_EQ(file.read(), "");
    EXPECT_EQ(port::seekFile(file.get(), 3, FILE_BEGIN), 3);
    EXPECT_EQ(port::seekFile(file.get(), 2, FILE_CURRENT), 5);
    EXPECT_EQ(file.read(), "56789");
    EXPECT_EQ(port::seekFile(file.get(), -4, FILE_END), 6);
    EXPECT_EQ(file.read(), "6789");
    EXPECT_EQ(port::seekFile(file.get(), -1, FILE_BEGIN), -1);
    EXPECT_EQ(port::seekFile(file.get(), 0, 3), -1) << "no such origin";
}

TEST_F(PortFiles, HavePositionsAndASizeOf32Bits) {
    constexpr long kCut = static_cast<std::int32_t>(0xC0000000u);
    const WideText path = m_folder.file("file", "");
    std::filesystem::resize_file(std::filesystem::path(path), 0xC0000000u);
    const OpenFile file(path, GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(port::sizeOfFile(file.get()), kCut);
    EXPECT_EQ(port::seekFile(file.get(), 0, FILE_END), kCut);
    EXPECT_EQ(port::seekFile(file.get(), static_cast<long>(0xFFFFFFFFu), FILE_END), kCut - 1);
    EXPECT_EQ(file.read(), std::string(1, '\0')) << "before the end";
}

TEST_F(PortFiles, AreReadOrWrittenAsTheyWereOpened) {
    const WideText path = m_folder.file("file", "text");
    char byte = 'x';
    EXPECT_EQ(port::writeFile(OpenFile(path, GENERIC_READ, OPEN_EXISTING).get(), &byte, 1), -1);
    EXPECT_EQ(port::readFile(OpenFile(path, GENERIC_WRITE, OPEN_EXISTING).get(), &byte, 1), -1);
}

TEST_F(PortFiles, AreSharedByReadersOnly) {
    const WideText path = m_folder.file("file", "text");
    {
        const OpenFile reader(path, GENERIC_READ, OPEN_EXISTING);
        EXPECT_TRUE(OpenFile(path, GENERIC_READ, OPEN_EXISTING).isOpen());
        EXPECT_FALSE(OpenFile(path, GENERIC_WRITE, CREATE_ALWAYS).isOpen());
        EXPECT_EQ(reader.read(), "text");
    }
    const OpenFile writer(path, GENERIC_WRITE, CREATE_ALWAYS);
    EXPECT_EQ(port::sizeOfFile(writer.get()), 0);
    EXPECT_FALSE(OpenFile(path, GENERIC_WRITE, OPEN_EXISTING).isOpen());
}

}  // namespace
