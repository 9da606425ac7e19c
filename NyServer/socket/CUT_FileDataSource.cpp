#include "NyServer/socket/CUT_FileDataSource.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

namespace {

constexpr char kLineEnd[] = "\r\n";
constexpr int kLineEndLength = 2;

bool endsLine(char c) {
    return c == '\r' || c == '\n';
}

}  // namespace

CUT_FileDataSource::CUT_FileDataSource(const WCHAR* path, int bufferSize)
    : m_buffer(new (std::nothrow) char[static_cast<size_t>(std::max(bufferSize, 1))]),
      m_bufferSize(std::max(bufferSize, 1)) {
    m_path[0] = 0;
    // A truncated path would name another file.
    if (!path) return;
    const std::size_t length = std::char_traits<WCHAR>::length(path);
    if (length < std::size(m_path)) std::copy_n(path, length + 1, m_path);
}

CUT_FileDataSource::~CUT_FileDataSource() = default;

CUT_DataSource* CUT_FileDataSource::Clone() {
    return new (std::nothrow) CUT_FileDataSource(m_path, m_bufferSize);
}

int CUT_FileDataSource::Open(OpenMsgType type) {
    if (!m_buffer || !m_path[0]) return -1;
    switch (type) {
        case OM_READ:
            return m_file.Open(m_path, GENERIC_READ, OPEN_EXISTING, 0);
        case OM_WRITE:
            return m_file.Open(m_path, GENERIC_READ | GENERIC_WRITE, CREATE_ALWAYS, 0);
        case OM_APPEND:
            return m_file.Open(m_path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, 1);
    }
    return -1;
}

int CUT_FileDataSource::Close() {
    m_file.Close();
    return 0;
}

int CUT_FileDataSource::ReadLine(char* line, unsigned int maxLen) {
    if (!line || !m_buffer) return -1;
    if (maxLen == 0) return 0;
    char* end = FindLineEnd();
    if (!end) {
        ReadAhead();
        end = FindLineEnd();
    }
    long long length = end ? end - m_buffer.get() : 0;
    if (end && length < static_cast<long long>(maxLen) - 3)
        return TakeLine(line, static_cast<int>(length));
    return TakePiece(line, maxLen);
}

int CUT_FileDataSource::WriteLine(const char* line) {
    if (!line) return -1;
    unsigned int length = static_cast<unsigned int>(std::strlen(line));
    int written = length > 0 ? Write(line, length) : 0;
    if (length == 0 || !endsLine(line[length - 1])) Write(kLineEnd, kLineEndLength);
    return written;
}

int CUT_FileDataSource::Read(char* buffer, unsigned int count) {
    if (!buffer) return -1;
    m_held = 0;
    return m_file.Read(buffer, count);
}

int CUT_FileDataSource::Write(const char* buffer, unsigned int count) {
    if (!buffer) return -1;
    return m_file.Write(buffer, count);
}

long CUT_FileDataSource::Seek(long offset, int origin) {
    if (origin == int{FILE_CURRENT} && m_held > 0) {
        long firstUnread = m_file.Seek(0, FILE_CURRENT) - m_held;
        if (firstUnread > 0) m_file.Seek(firstUnread, FILE_BEGIN);
    }
    m_held = 0;
    return m_file.Seek(offset, static_cast<DWORD>(origin));
}

// Returns the carriage return of the first buffered line end, or null.
char* CUT_FileDataSource::FindLineEnd() const {
    m_buffer[m_held] = '\0';
    return std::strstr(m_buffer.get(), kLineEnd);
}

void CUT_FileDataSource::ReadAhead() {
    int space = m_bufferSize - m_held - 1;
    int done = m_file.Read(m_buffer.get() + m_held, static_cast<DWORD>(space));
    if (done > 0) m_held += done;
}

void CUT_FileDataSource::Consume(int count) {
    m_held -= count;
    std::memmove(m_buffer.get(), m_buffer.get() + count, static_cast<size_t>(m_held));
}

int CUT_FileDataSource::TakeLine(char* line, int length) {
    int whole = length + kLineEndLength;
    std::memcpy(line, m_buffer.get(), static_cast<size_t>(whole));
    line[whole] = '\0';
    Consume(whole);
    return whole;
}

int CUT_FileDataSource::TakePiece(char* line, unsigned int maxLen) {
    unsigned int taken = std::min(maxLen - 1, static_cast<unsigned int>(m_held));
    std::memcpy(line, m_buffer.get(), taken);
    line[taken] = '\0';
    Consume(static_cast<int>(taken));
    return static_cast<int>(std::strlen(line));
}
