// CFile: what an archive needs of a file. CMemFile is the implementation; hosts may derive others.
#pragma once

#include "CObject.h"
#include "CString.h"

// One file object may be used by one thread at a time. Positions and lengths count bytes.
class NYBASE_API CFile : public CObject {
    DECLARE_DYNAMIC(CFile)
  public:
    enum SeekPosition { begin = 0, current = 1, end = 2 };
    enum BufferCommand { bufferRead, bufferWrite, bufferCommit, bufferCheck };
    enum BufferFlags { bufferDirect = 1, bufferBlocking = 2 };

    virtual ULONGLONG GetPosition() const = 0;
    virtual CString GetFilePath() const { return m_strFileName; }
    virtual void SetFilePath(LPCTSTR path) { m_strFileName = path; }

    // Returns the new position. Throws CFileException badSeek, with the position unchanged, for a
    // position before the beginning or above the largest LONGLONG. A position beyond the end is
    // legal; the file grows when something is written there.
    virtual ULONGLONG Seek(LONGLONG offset, UINT from) = 0;
    virtual void SetLength(ULONGLONG length) = 0;
    virtual ULONGLONG GetLength() const = 0;

    // Returns the number of bytes read, less than `count` at the end of the file.
    virtual UINT Read(void* buffer, UINT count) = 0;
    // Writes all `count` bytes or throws.
    virtual void Write(const void* buffer, UINT count) = 0;

    virtual void Abort() = 0;
    virtual void Flush() = 0;
    virtual void Close() = 0;

    // Direct access to the file's own memory, if it has any. bufferCheck: returns the supported
    // BufferFlags, 0 for none.
    virtual UINT GetBufferPtr(UINT command, UINT count = 0, void** start = nullptr,
                              void** max = nullptr);

    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }

  protected:
    CString m_strFileName;
};
