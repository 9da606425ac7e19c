#include "afx.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

IMPLEMENT_DYNAMIC(CFile, CObject)
IMPLEMENT_DYNAMIC(CMemFile, CFile)

namespace {

// No block of memory is larger.
constexpr size_t kLargestBlock = std::numeric_limits<ptrdiff_t>::max();

}  // namespace

UINT CFile::GetBufferPtr(UINT, UINT, void**, void**) {
    return 0;
}

CMemFile::CMemFile(UINT growBytes) : m_nGrowBytes(growBytes) {}

CMemFile::CMemFile(BYTE* buffer, UINT bufferSize, UINT growBytes) : m_nGrowBytes(growBytes) {
    CMemFile::Attach(buffer, bufferSize, growBytes);
}

CMemFile::~CMemFile() {
    CMemFile::Close();
}

void CMemFile::Attach(BYTE* buffer, UINT bufferSize, UINT growBytes) {
    CMemFile::Close();
    m_nGrowBytes = growBytes;
    m_lpBuffer = buffer;
    m_nBufferSize = bufferSize;
    m_nFileSize = growBytes == 0 ? bufferSize : 0;
    m_bAutoDelete = FALSE;
}

BYTE* CMemFile::Detach() {
    BYTE* block = m_lpBuffer;
    m_lpBuffer = nullptr;
    m_nPosition = m_nBufferSize = m_nFileSize = 0;
    m_bAutoDelete = TRUE;
    return block;
}

void CMemFile::Close() {
    const BOOL owned = m_bAutoDelete;
    BYTE* block = Detach();
    if (owned && block != nullptr) Free(block);
}

ULONGLONG CMemFile::Seek(LONGLONG offset, UINT from) {
    const size_t origin = from == current ? m_nPosition : from == end ? m_nFileSize : 0;
    const LONGLONG start = static_cast<LONGLONG>(origin);
    if (offset < -start || offset > std::numeric_limits<LONGLONG>::max() - start) {
        AfxThrowFileException(CFileException::badSeek, -1, m_strFileName);
    }
    m_nPosition = static_cast<size_t>(start + offset);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG length) {
    if (length > m_nBufferSize) GrowFile(length);
    if (length > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, length - m_nFileSize);
    m_nFileSize = length;
    m_nPosition = std::min(m_nPosition, m_nFileSize);
}

UINT CMemFile::Read(void* buffer, UINT count) {
    void* start = nullptr;
    void* max = nullptr;
    const UINT available = exposeForReading(count, &start, &max);
    if (available > 0) Memcpy(static_cast<BYTE*>(buffer), static_cast<BYTE*>(start), available);
    return available;
}

void CMemFile::Write(const void* buffer, UINT count) {
    if (count == 0) return;
    prepareWrite(m_nPosition + count);
    Memcpy(m_lpBuffer + m_nPosition, static_cast<const BYTE*>(buffer), count);
    GetBufferPtr(bufferCommit, count);
}

void CMemFile::prepareWrite(size_t length) {
    if (length > m_nBufferSize) GrowFile(length);
    if (m_nPosition > m_nFileSize) {
        std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
    }
}

UINT CMemFile::GetBufferPtr(UINT command, UINT count, void** start, void** max) {
    switch (command) {
        case bufferCheck:
            return bufferDirect;
        case bufferRead:
            return exposeForReading(count, start, max);
        case bufferWrite:
            return exposeForWriting(count, start, max);
        case bufferCommit:
            m_nPosition += count;
            m_nFileSize = std::max(m_nFileSize, m_nPosition);
            return 0;
        default:
            return 0;
    }
}

UINT CMemFile::exposeForReading(UINT count, void** start, void** max) {
    const size_t left = m_nPosition < m_nFileSize ? m_nFileSize - m_nPosition : 0;
    const UINT available = static_cast<UINT>(std::min<size_t>(left, count));
    *start = m_lpBuffer + (left > 0 ? m_nPosition : 0);
    *max = static_cast<BYTE*>(*start) + available;
    m_nPosition += available;
    return available;
}

UINT CMemFile::exposeForWriting(UINT count, void** start, void** max) {
    const size_t length = m_nPosition + count;
    if (m_nGrowBytes != 0)
        prepareWrite(length);
    else if (m_nPosition <= m_nBufferSize)
        prepareWrite(std::min(length, m_nBufferSize));
    const size_t remaining = m_nPosition < m_nBufferSize ? m_nBufferSize - m_nPosition : 0;
    const UINT available =
        static_cast<UINT>(std::min<size_t>(remaining, std::numeric_limits<UINT>::max()));
    *start = m_lpBuffer + (remaining > 0 ? m_nPosition : 0);
    *max = static_cast<BYTE*>(*start) + available;
    return available;
}

BYTE* CMemFile::Alloc(size_t bytes) {
    return static_cast<BYTE*>(std::malloc(bytes));
}

BYTE* CMemFile::Realloc(BYTE* memory, size_t bytes) {
    return static_cast<BYTE*>(std::realloc(memory, bytes));
}

BYTE* CMemFile::Memcpy(BYTE* target, const BYTE* source, size_t bytes) {
    return static_cast<BYTE*>(std::memcpy(target, source, bytes));
}

void CMemFile::Free(BYTE* memory) {
    std::free(memory);
}

void CMemFile::GrowFile(size_t bytes) {
    if (m_nGrowBytes == 0) AfxThrowMemoryException();
    // Grows by at least half, so that a file written in small steps is not copied at each of them.
    const size_t wanted = std::max(bytes, m_nBufferSize + m_nBufferSize / 2);
    if (wanted > kLargestBlock - m_nGrowBytes) AfxThrowMemoryException();
    const size_t size = (wanted + m_nGrowBytes - 1) / m_nGrowBytes * m_nGrowBytes;
    BYTE* block = m_lpBuffer != nullptr ? Realloc(m_lpBuffer, size) : Alloc(size);
    if (block == nullptr) AfxThrowMemoryException();
    m_lpBuffer = block;
    m_nBufferSize = size;
}
