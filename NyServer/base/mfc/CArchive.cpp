#include "afx.h"

#include <algorithm>
#include <bit>

#include "AfxReadNumbers.h"

// The operators copy values as they lie in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

// A smaller window could not hold every value whole.
constexpr size_t kSmallestBuffer = 128;

}  // namespace

CArchive::CArchive(CFile* file, UINT mode, int bufferSize, void* buffer)
    : m_strFileName(file->GetFilePath()),
      m_file(file),
      m_mode(mode),
      m_direct((file->GetBufferPtr(CFile::bufferCheck) & CFile::bufferDirect) != 0),
      m_bufferSize(bufferSize > 0 ? static_cast<size_t>(bufferSize) : 0),
      m_buffer(static_cast<BYTE*>(buffer)) {}

CArchive::~CArchive() noexcept(false) {
    if (m_file == nullptr) return;
    if ((m_mode & bNoFlushOnDelete) != 0) {
        Abort();
    } else {
        Close();
    }
}

void CArchive::Close() {
    Flush();
    m_written.reset();
    m_file = nullptr;
}

void CArchive::Abort() noexcept {
    closeWindow();
    m_written.reset();
    m_file = nullptr;
}

void CArchive::Flush() {
    if (m_start == nullptr) return;
    const UINT written = IsStoring() ? static_cast<UINT>(m_out - m_start) : 0;
    const LONGLONG unread = m_inEnd - m_in;
    BYTE* const start = m_start;
    closeWindow();
    if (IsLoading()) {
        if (unread > 0) m_file->Seek(-unread, CFile::current);
    } else if (m_direct) {
        if (written > 0) m_file->GetBufferPtr(CFile::bufferCommit, written);
    } else if (written > 0) {
        m_file->Write(start, written);
    }
}

void CArchive::throwWrongDirection() const {
    AfxThrowArchiveException(
        IsLoading() ? CArchiveException::readOnly : CArchiveException::writeOnly, m_strFileName);
}

void CArchive::openWindow(size_t count) {
    if (m_direct) {
        void* start = nullptr;
        void* max = nullptr;
        m_file->GetBufferPtr(CFile::bufferWrite, static_cast<UINT>(count), &start, &max);
        m_start = m_out = static_cast<BYTE*>(start);
        m_outEnd = static_cast<BYTE*>(max);
    } else {
        useOwnBuffer();
        m_start = m_out = m_buffer;
        m_outEnd = m_buffer + m_bufferSize;
    }
}

void CArchive::useOwnBuffer() {
    if (m_bufferSize < kSmallestBuffer) {
        m_bufferSize = kSmallestBuffer;
        m_buffer = nullptr;
    }
    if (m_buffer != nullptr) return;
    m_ownBuffer = std::make_unique<BYTE[]>(m_bufferSize);
    m_buffer = m_ownBuffer.get();
}

void CArchive::makeRoom(size_t count) {
    if (IsLoading()) throwWrongDirection();
    Flush();
    openWindow(count);
    if (spaceLeft() < count) AfxThrowMemoryException();
}

void CArchive::Write(const void* buffer, int count) {
    if (IsLoading()) throwWrongDirection();
    if (count <= 0) return;
    const size_t bytes = static_cast<size_t>(count);
    if (spaceLeft() < bytes) {
        if (!m_direct && bytes > std::max(m_bufferSize, kSmallestBuffer)) {
            Flush();
            m_file->Write(buffer, static_cast<UINT>(count));
            return;
        }
        makeRoom(bytes);
    }
    std::memcpy(m_out, buffer, bytes);
    m_out += bytes;
}

bool CArchive::tryFetch(size_t count) {
    if (m_direct) {
        // The window was the rest of the file; look again in case the file has grown since.
        Flush();
        void* start = nullptr;
        void* max = nullptr;
        m_file->GetBufferPtr(CFile::bufferRead, static_cast<UINT>(-1), &start, &max);
        m_start = m_in = static_cast<BYTE*>(start);
        m_inEnd = static_cast<BYTE*>(max);
        return unreadBytes() >= count;
    }
    useOwnBuffer();
    const size_t held = unreadBytes();
    if (held > 0) std::memmove(m_buffer, m_in, held);
    m_start = m_in = m_buffer;
    // Kept up to date, so that nothing is lost when the file throws.
    m_inEnd = m_buffer + held;
    while (unreadBytes() < count) {
        const UINT room = static_cast<UINT>(m_buffer + m_bufferSize - m_inEnd);
        const UINT got = m_file->Read(m_inEnd, room);
        if (got == 0) return false;
        m_inEnd += got;
    }
    return true;
}

void CArchive::fetch(size_t count) {
    if (IsStoring()) throwWrongDirection();
    if (!tryFetch(count)) AfxThrowArchiveException(CArchiveException::endOfFile, m_strFileName);
}

UINT CArchive::Read(void* buffer, UINT count) {
    if (IsStoring()) throwWrongDirection();
    BYTE* target = static_cast<BYTE*>(buffer);
    UINT left = count;
    while (left > 0 && (m_in != m_inEnd || tryFetch(1))) {
        const UINT part = static_cast<UINT>(std::min<size_t>(left, m_inEnd - m_in));
        std::memcpy(target, m_in, part);
        m_in += part;
        target += part;
        left -= part;
    }
    return count - left;
}

void CArchive::EnsureRead(void* buffer, UINT count) {
    if (Read(buffer, count) != count) {
        AfxThrowArchiveException(CArchiveException::endOfFile, m_strFileName);
    }
}

ULONGLONG CArchive::BytesLeft() const {
    const ULONGLONG length = m_file->GetLength();
    const ULONGLONG position = m_file->GetPosition();
    return static_cast<ULONGLONG>(m_inEnd - m_in) + (length > position ? length - position : 0);
}

void CArchive::writeLongCount(size_t count) {
    if (count > 0xFFFFFFFE) AfxThrowInvalidArgException();
    *this << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(count);
}

size_t CArchive::ReadCount() {
    WORD shortCount;
    *this >> shortCount;
    if (shortCount != 0xFFFF) return shortCount;
    DWORD longCount;
    *this >> longCount;
    return longCount;
}
