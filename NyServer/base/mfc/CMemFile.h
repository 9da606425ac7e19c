// CMemFile: a file in one block of memory.
#pragma once

#include "CFile.h"

// Always open. One object may be used by one thread at a time. The block is allocated by malloc,
// through the virtual allocation operations; the file owns it unless it was attached.
class NYBASE_API CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)
  public:
    // An empty file whose block grows in multiples of `growBytes`; 0: it cannot grow.
    explicit CMemFile(UINT growBytes = 1024);
    CMemFile(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    CMemFile(const CMemFile&) = delete;
    CMemFile& operator=(const CMemFile&) = delete;
    ~CMemFile() override;

    // Uses `buffer` as the file's block; the caller frees it. growBytes 0: the contents are the
    // file, which cannot grow. Otherwise the contents are ignored, the length is 0, and the block
    // is capacity that may be realloc'ed.
    void Attach(BYTE* buffer, UINT bufferSize, UINT growBytes = 0);
    // Returns the block to the caller, who frees it with free(); null if there is none. The file is
    // empty afterwards.
    BYTE* Detach();

    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    // Truncates or extends the file; new bytes are 0, a position beyond the new end moves to it.
    // Throws CMemoryException, with nothing changed, if the block cannot grow that far.
    void SetLength(ULONGLONG length) override;
    ULONGLONG GetLength() const override { return m_nFileSize; }
    UINT Read(void* buffer, UINT count) override;
    // Throws CMemoryException, with nothing changed, if the block cannot grow that far.
    void Write(const void* buffer, UINT count) override;
    void Abort() override { Close(); }
    void Flush() override {}
    void Close() override;

    // bufferRead: [*start, *max) are the next bytes, at most `count` ((UINT)-1: to the end); the
    // position advances by them. bufferWrite: [*start, *max) is the rest of the block at the
    // position, at least `count` bytes unless the file cannot grow. bufferCommit: `count` of these
    // bytes have been filled; the position advances by them; returns 0. Read and write return the
    // number of bytes in the range.
    UINT GetBufferPtr(UINT command, UINT count = 0, void** start = nullptr,
                      void** max = nullptr) override;

  protected:
    virtual BYTE* Alloc(size_t bytes);
    virtual BYTE* Realloc(BYTE* memory, size_t bytes);
    virtual BYTE* Memcpy(BYTE* target, const BYTE* source, size_t bytes);
    virtual void Free(BYTE* memory);
    // Grows the block to at least `bytes` or throws CMemoryException, with nothing changed.
    virtual void GrowFile(size_t bytes);

    UINT m_nGrowBytes;
    size_t m_nPosition = 0;
    size_t m_nBufferSize = 0;
    size_t m_nFileSize = 0;
    BYTE* m_lpBuffer = nullptr;
    BOOL m_bAutoDelete = TRUE;  // whether the file frees the block

  private:
    // Grows the block for a file of `length` bytes and clears the bytes between the end and the
    // position.
    void prepareWrite(size_t length);
    UINT exposeForReading(UINT count, void** start, void** max);
    UINT exposeForWriting(UINT count, void** start, void** max);
};
