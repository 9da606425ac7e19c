#pragma once

#include <memory>

#include "NyServer/socket/CUT_DataSource.h"
#include "NyServer/socket/CUT_File.h"

// A file as a data source, with a read-ahead buffer for reading lines. Lines end in carriage return
// and line feed.
//
// One thread at a time uses an object: nothing in it is locked. It owns its file handle and its
// buffer.
class NYSERVER_API CUT_FileDataSource : public CUT_DataSource {
  public:
    // `path` may be null; a null path, or one of 260 characters or more, leaves a source that
    // cannot be opened. `bufferSize` in bytes bounds the longest line that ReadLine can find the
    // end of; socket transfers use 4096.
    CUT_FileDataSource(const wchar_t* path, int bufferSize);
    ~CUT_FileDataSource() override;

    CUT_DataSource* Clone() override;
    int Open(OpenMsgType type) override;

    // What was read ahead stays in the buffer.
    int Close() override;

    // Reads text: a zero byte in the file ends the text early. A line that does not fit `maxLen` -
    // 3 bytes or the buffer comes in pieces without line end.
    int ReadLine(char* line, unsigned int maxLen) override;
    int WriteLine(const char* line) override;

    // Drops what was read ahead and reads straight from the file. -1 for a null `buffer` too.
    int Read(char* buffer, unsigned int count) override;

    // -1 for a null `buffer` too.
    int Write(const char* buffer, unsigned int count) override;

    // A move relative to FILE_CURRENT counts from the first byte that ReadLine has not yet handed
    // out. Drops what was read ahead.
    long Seek(long offset, int origin) override;

  private:
    char* FindLineEnd() const;
    void ReadAhead();
    void Consume(int count);
    int TakeLine(char* line, int length);
    int TakePiece(char* line, unsigned int maxLen);

    CUT_File m_file;
    std::unique_ptr<char[]> m_buffer;
    int m_bufferSize;
    int m_held = 0;
    wchar_t m_path[MAX_PATH];
};
