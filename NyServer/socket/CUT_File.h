#pragma once

#include "NyServer/base/port/Port.h"
#include "NyServer/NyServerApi.h"

// A file handle with an append mode. Owns the handle. One thread at a time may use an object;
// nothing in it is locked.
//
// The order of the virtual functions is part of the binary interface: do not change it.
class NYSERVER_API CUT_File {
  public:
    CUT_File();
    virtual ~CUT_File();
    CUT_File(const CUT_File&) = delete;
    CUT_File& operator=(const CUT_File&) = delete;

    // Closes the open file and opens `path`, without leading and trailing spaces, with the access
    // and the disposition of CreateFileW; others may read the file at the same time. If `append` is
    // not 0, each write appends. Returns 0; on failure, or if `path` is null, returns -1 with the
    // file closed.
    virtual int Open(const WCHAR* path, DWORD access, DWORD disposition, int append);

    // Always returns 0. Has no effect on a closed file.
    virtual int Close();

    // Returns the number of bytes read (0 at the end of the file), or -1 if closed or on failure.
    virtual int Read(void* buffer, DWORD count);

    // Returns the number of bytes written, or -1 if closed or on failure.
    virtual int Write(const void* buffer, DWORD count);

    // `origin` is FILE_BEGIN, FILE_CURRENT or FILE_END. Returns the new position, or -1 if closed
    // or on failure.
    virtual long Seek(long offset, DWORD origin);

    // Returns the size of the file in bytes, or -1 if closed. Sizes of 2 GiB and above do not fit
    // the result.
    virtual long GetSize();

  private:
    bool IsOpen() const { return m_handle != port::kNoFile; }

    port::FileHandle m_handle = port::kNoFile;
    int m_append = 0;
};
