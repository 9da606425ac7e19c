#pragma once

#include <memory>

#include "NyServer/socket/CUT_DataSource.h"
#include "NyServer/socket/CUT_File.h"

// A file as a data source, with a read-ahead buffer for lines. Lines end in "\r\n".
//
// Owns its file handle and its buffer. One thread at a time may use an object; nothing in it is
// locked.
class NYSERVER_API CUT_FileDataSource : public CUT_DataSource {
  public:
    // `bufferSize`, in bytes, limits the length of a line that ReadLine returns in one piece;
    // socket transfers use 4096. If `path` is null or longer than 259 characters, the source cannot
    // be opened.
    CUT_FileDataSource(const WCHAR* path, int bufferSize);
    ~CUT_FileDataSource() override;

    CUT_DataSource* Clone() override;
    int Open(OpenMsgType type) override;

    // Keeps the content of the read-ahead buffer.
    int Close() override;

    // A zero byte in the file ends the text early. A line that does not fit the buffer or `maxLen`
    // - 3 bytes is returned in pieces without a line end.
    int ReadLine(char* line, unsigned int maxLen) override;
    int WriteLine(const char* line) override;

    // Discards the read-ahead buffer and reads directly from the file. Returns -1 if `buffer` is
    // null, too.
    int Read(char* buffer, unsigned int count) override;

    // Returns -1 if `buffer` is null, too.
    int Write(const char* buffer, unsigned int count) override;

    // Discards the read-ahead buffer. FILE_CURRENT is the first byte that ReadLine has not returned
    // yet.
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
    WCHAR m_path[MAX_PATH];
};
