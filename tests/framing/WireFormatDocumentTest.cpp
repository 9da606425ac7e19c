// The document shows the bytes that the library writes.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

#include "NyServer/base/mfc/CArchiveObjects.h"
#include "NyServer/framing/NySeReply.h"
#include "tests/support/Golden.h"

namespace {

struct Dump {
    Bytes bytes;
    bool hasRightOffsets = true;
};

void addLine(const std::string& line, Dump& dump) {
    std::istringstream columns(line);
    std::string offset;
    std::string bytes;
    std::getline(columns, offset, '|');
    std::getline(columns, bytes, '|');
    if (std::stoul(offset, nullptr, 16) != dump.bytes.size()) dump.hasRightOffsets = false;
    dump.bytes = dump.bytes + fromHex(bytes);
}

class WireFormatDocument : public ::testing::Test {
  protected:
    void SetUp() override {
        std::ifstream file(NY_TEST_DATA "/../../docs/wire-format.md");
        ASSERT_TRUE(file);
        const std::string opening = "```hex ";
        std::string inside;
        for (std::string line; std::getline(file, line); m_text += line + "\n") {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.rfind(opening, 0) == 0) {
                inside = line.substr(opening.size());
            } else if (line == "```") {
                inside.clear();
            } else if (!inside.empty()) {
                addLine(line, m_dumps[inside]);
            }
        }
    }

    bool says(const std::string& text) const { return m_text.find(text) != std::string::npos; }

    std::map<std::string, Dump> m_dumps;
    std::string m_text;
};

TEST_F(WireFormatDocument, ShowsTheBytesThatAreWritten) {
    ASSERT_EQ(3u, m_dumps.size());
    for (const auto& [name, dump] : m_dumps) {
        EXPECT_EQ(toHex(golden(name).bytes), toHex(dump.bytes)) << name;
        EXPECT_TRUE(dump.hasRightOffsets) << name;
    }
}

TEST_F(WireFormatDocument, NamesEveryRequestByItsCode) {
    for (const Golden& vector : goldenNamed("request-")) {
        const int code = vector.bytes[0] | vector.bytes[1] << 8;
        const std::string row =
            "\n| " + std::to_string(code) + " | `" + vector.name.substr(8) + "`";
        EXPECT_TRUE(says(row)) << row;
    }
}

TEST_F(WireFormatDocument, StatesTheBoundsOfReaders) {
    EXPECT_TRUE(says("| nesting of objects | " + std::to_string(kDeepestNesting) + " |"));
    EXPECT_TRUE(says("| 1 to " + std::to_string(kLongestClassName) + " characters, "));
    std::ostringstream numbers;
    numbers << "| 0x" << std::hex << std::uppercase << kLastNumber << "; only those";
    EXPECT_TRUE(says(numbers.str())) << numbers.str();
    EXPECT_TRUE(says("in steps of " + std::to_string(NySe::kReceiveStep / 1024) + " KiB"));
}

}  // namespace
