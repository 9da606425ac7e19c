#pragma once

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/NyServerApi.h"

// A file handle with an append mode. One thread at a time uses an object: nothing in it is locked.
// It owns its handle.
//
// The order of the virtual functions is part of the binary interface.
class NYSERVER_API CUT_File {
  public:
    CUT_File();
    virtual ~CUT_File();
    CUT_File(const CUT_File&) = delete;
    CUT_File& operator=(const CUT_File&) = delete;

    // Closes what is open and opens `path`, spaces in front and behind left out, with the access
    // and the disposition of CreateFileW; others may read the file meanwhile. `append` other than 0
    // makes every write go to the end. 0 on success; -1 on failure or for a null path, and the file
    // is closed then.
    virtual int Open(const wchar_t* path, DWORD access, DWORD disposition, int append);

    // Always 0; closing a closed file does nothing.
    virtual int Close();

    // The bytes read (0 at the end of the file), or -1 when closed or on failure.
    virtual int Read(void* buffer, DWORD count);

    // The bytes written, or -1 when closed or on failure.
    virtual int Write(const void* buffer, DWORD count);

    // `origin` is FILE_BEGIN, FILE_CURRENT or FILE_END. The new position, or -1 when closed or on
    // failure.
    virtual long Seek(long offset, DWORD origin);

    // The bytes in the file, or -1 when closed. Sizes of 2 GiB and above do not fit the result.
    virtual long GetSize();

  private:
    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

    HANDLE m_handle = INVALID_HANDLE_VALUE;
    int m_append = 0;
};
