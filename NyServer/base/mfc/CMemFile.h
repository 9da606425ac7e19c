// CMemFile: a file in one block of memory.
#pragma once

#include "CFile.h"

// Always open. One object may be used by one thread at a time. The block comes from malloc, through
// the virtual allocation operations; the file owns it unless it was attached.
class NYBASE_API CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)
  public:
    // An empty file whose block grows in multiples of `growBytes`; 0: it cannot grow.
    explicit CMemFile(UINT growBytes = 1024);
    CMemFile(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    CMemFile(const CMemFile&) = delete;
    CMemFile& operator=(const CMemFile&) = delete;
    ~CMemFile() override;

    // Takes `buffer` as the file's block; it stays the caller's to free. growBytes 0: the contents
    // are the file, which cannot grow. Otherwise the contents are ignored, the length is 0, and the
    // block is capacity that may be realloc'ed.
    void Attach(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    // Hands the block over to the caller, who frees it with free(); null when there is none. The
    // file is empty then.
    BYTE* Detach();

    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    // Cuts or extends the file; new bytes are 0, a position beyond the end moves to it. Throws
    // CMemoryException, with nothing changed, when the block cannot grow so far.
    void SetLength(ULONGLONG length) override;
    ULONGLONG GetLength() const override { return m_nFileSize; }
    UINT Read(void* buffer, UINT count) override;
    // Throws CMemoryException, with nothing changed, when the block cannot grow so far.
    void Write(const void* buffer, UINT count) override;
    void Abort() override { Close(); }
    void Flush() override {}
    void Close() override;

    // bufferRead: [*start, *max) are the next bytes, at most `count` ((UINT)-1: to the end); the
    // position moves behind them. bufferWrite: [*start, *max) is the block's room at the position,
    // at least `count` bytes unless the file cannot grow. bufferCommit: `count` bytes of that room
    // have been filled; the position moves behind them; returns 0. Read and write return the number
    // of bytes in the range.
    UINT GetBufferPtr(UINT command, UINT count = 0, void** start = nullptr,
                      void** max = nullptr) override;

  protected:
    virtual BYTE* Alloc(size_t bytes);
    virtual BYTE* Realloc(BYTE* memory, size_t bytes);
    virtual BYTE* Memcpy(BYTE* target, const BYTE* source, size_t bytes);
    virtual void Free(BYTE* memory);
    // Makes the block at least `bytes` long or throws CMemoryException, with nothing changed.
    virtual void GrowFile(size_t bytes);

    UINT m_nGrowBytes;
    size_t m_nPosition = 0;
    size_t m_nBufferSize = 0;
    size_t m_nFileSize = 0;
    BYTE* m_lpBuffer = nullptr;
    BOOL m_bAutoDelete = TRUE;  // whether the block is the file's to free

  private:
    // Grows the block for a file of `length` bytes and clears what lies between the end and the
    // position.
    void prepareWrite(size_t length);
    UINT exposeForReading(UINT count, void** start, void** max);
    UINT exposeForWriting(UINT count, void** start, void** max);
};
