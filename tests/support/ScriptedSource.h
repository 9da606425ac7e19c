#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "NyServer/base/port/Port.h"
#include "NyServer/socket/CUT_DataSource.h"

// A data source in memory that records what a transfer does with it.
class ScriptedSource : public CUT_DataSource {
  public:
    explicit ScriptedSource(std::string start = "") : content(std::move(start)) {}

    std::string content;
    int openResult = 0;
    int writeResult = -2;               // what Write answers; -2: what it was given
    std::vector<int> opened;            // the types of all calls of Open
    std::vector<unsigned int> asked;    // the counts of all calls of Read
    std::vector<unsigned int> written;  // the counts of all calls of Write
    int closed = 0;
    int failingSeek = -1;  // the number, from 0, of the Seek that fails
    int seeks = 0;

    CUT_DataSource* Clone() override { return nullptr; }
    int Open(OpenMsgType type) override {
        opened.push_back(type);
        return openResult;
    }
    int Close() override {
        ++closed;
        return 0;
    }
    int ReadLine(char*, unsigned int) override { return -1; }
    int WriteLine(const char*) override { return -1; }
    int Read(char* buffer, unsigned int count) override {
        asked.push_back(count);
        const size_t done = content.copy(buffer, count, m_position);
        m_position += done;
        return static_cast<int>(done);
    }
    int Write(const char* buffer, unsigned int count) override {
        written.push_back(count);
        content.append(buffer, count);
        return writeResult == -2 ? static_cast<int>(count) : writeResult;
    }
    long Seek(long offset, int origin) override {
        if (seeks++ == failingSeek || origin != FILE_BEGIN || offset < 0) return -1;
        m_position = std::min(static_cast<size_t>(offset), content.size());
        return offset;
    }

  private:
    size_t m_position = 0;
};

// `size` bytes of a pattern that does not repeat at the sizes of pieces.
inline std::string patternOf(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    return bytes;
}
