// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/CUT_File.h"

#include <string>
#include <string_view>

namespace {

std::basic_string<WCHAR> withoutOuterSpaces(std::basic_string_view<WCHAR> path) {
    size_t first = path.find_first_not_of(_T(' '));
    if (first == path.npos) return {};
    return std::basic_string<WCHAR>(path.substr(first, path.find_last_not_of(_T(' ')) - first + 1));
}

}  // namespace

CUT_File::CUT_File() = default;

// Not a virtual call: the derived class is already destroyed.
CUT_File::~CUT_File() {
    CUT_File::Close();
}

int CUT_File::Open(const WCHAR* path, DWORD access, DWORD disposition, int append) {
    Close();
    if (!path) return -1;
    m_handle = NySe::resultOr(port::FileHandle{port::kNoFile}, [&] {
        return port::openFile(withoutOuterSpaces(path).c_str(), access, disposition);
    });
    if (!IsOpen()) return -1;
    m_append = append;
    return 0;
}

int CUT_File::Close() {
    if (IsOpen()) port::closeFile(m_handle);
    m_handle = port::kNoFile;
    return 0;
}

int CUT_File::Read(void* buffer, DWORD count) {
    return IsOpen() ? port::readFile(m_handle, buffer, count) : -1;
}

int CUT_File::Write(const void* buffer, DWORD count) {
    if (!IsOpen()) return -1;
    if (m_append) Seek(0, FILE_END);
    return port::writeFile(m_handle, buffer, count);
}

long CUT_File::Seek(long offset, DWORD origin) {
    return IsOpen() ? port::seekFile(m_handle, offset, origin) : -1;
}

long CUT_File::GetSize() {
    return IsOpen() ? port::sizeOfFile(m_handle) : -1;
}
