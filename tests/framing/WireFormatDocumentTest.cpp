// The documents show the bytes that the library writes, and the numbers and words of its tables.
#include <gtest/gtest.h>

#include <fstream>
#include <iomanip>
#include <map>
#include <regex>
#include <sstream>

#include "NyServer/base/mfc/AfxReadNumbers.h"
#include "NyServer/framing/NySeReply.h"
#include "NyServer/records/NySeShareMode.h"
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

std::string readDocument(const std::string& name) {
    std::ifstream file(NY_TEST_DATA "/../../docs/" + name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
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
    for (const NySe::RequestKind& request : NySe::kRequests)
        EXPECT_TRUE(says("\n| " + std::to_string(request.action) + " | `" + request.name + "` | "))
            << request.name;
    const std::regex row("\n\\| [0-9]+ \\| `");
    EXPECT_EQ(std::distance(std::sregex_iterator(m_text.begin(), m_text.end(), row), {}),
              std::ssize(NySe::kRequests));
}

TEST_F(WireFormatDocument, StatesTheBoundsOfReaders) {
    EXPECT_TRUE(says("| nesting of objects | " + std::to_string(kDeepestNesting) + " |"));
    EXPECT_TRUE(says("| 1 to " + std::to_string(AfxTags::kLongestClassName) + " characters, "));
    std::ostringstream numbers;
    numbers << "| 0x" << std::hex << std::uppercase << AfxTags::kLastNumber << "; only those";
    EXPECT_TRUE(says(numbers.str())) << numbers.str();
    EXPECT_TRUE(says("in steps of " + std::to_string(NySe::kReceiveStep / 1024) + " KiB"));
}

TEST(CentralServerDocument, ListsEveryNotification) {
    const std::string document = readDocument("central-server.md");
    for (const NySe::NotificationKind& kind : NySe::kNotifications) {
        const size_t row = document.find("\n| " + std::to_string(kind.action) + " | " + kind.words);
        ASSERT_NE(std::string::npos, row) << kind.words;
        const std::string line = document.substr(row + 1, document.find('\n', row + 1) - row);
        const std::string object = kind.object != nullptr
                                       ? std::string("| the `") + kind.object + '`'
                                       : "| the bytes as they were sent |";
        EXPECT_NE(std::string::npos, line.find(object)) << line;
    }
}

TEST(NyctlDocument, ExplainsEveryBitOfAShareMode) {
    const std::string document = readDocument("nyctl.md");
    for (const NySe::ShareModeBit& bit : NySe::kShareModeBits) {
        std::ostringstream row;
        row << "\n| 0x" << std::hex << std::setw(2) << std::setfill('0') << bit.bit << ", "
            << bit.word << " |";
        EXPECT_NE(std::string::npos, document.find(row.str())) << row.str();
    }
}

}  // namespace
