// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/CUT_File.h"

#include <string>
#include <string_view>

namespace {

std::wstring withoutOuterSpaces(std::wstring_view path) {
    size_t first = path.find_first_not_of(L' ');
    if (first == std::wstring_view::npos) return {};
    return std::wstring(path.substr(first, path.find_last_not_of(L' ') - first + 1));
}

}  // namespace

CUT_File::CUT_File() = default;

// Not a virtual call: the derived class is already destroyed.
CUT_File::~CUT_File() {
    CUT_File::Close();
}

int CUT_File::Open(const wchar_t* path, DWORD access, DWORD disposition, int append) {
    Close();
    if (!path) return -1;
    m_handle = NySe::resultOr(INVALID_HANDLE_VALUE, [&] {
        return CreateFileW(withoutOuterSpaces(path).c_str(), access, FILE_SHARE_READ, nullptr,
                           disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    });
    if (!IsOpen()) return -1;
    m_append = append;
    return 0;
}

int CUT_File::Close() {
    if (IsOpen()) CloseHandle(m_handle);
    m_handle = INVALID_HANDLE_VALUE;
    return 0;
}

int CUT_File::Read(void* buffer, DWORD count) {
    DWORD done = 0;
    if (!IsOpen() || !ReadFile(m_handle, buffer, count, &done, nullptr)) return -1;
    return static_cast<int>(done);
}

int CUT_File::Write(const void* buffer, DWORD count) {
    if (!IsOpen()) return -1;
    if (m_append) Seek(0, FILE_END);
    DWORD done = 0;
    if (!WriteFile(m_handle, buffer, count, &done, nullptr)) return -1;
    return static_cast<int>(done);
}

long CUT_File::Seek(long offset, DWORD origin) {
    if (!IsOpen()) return -1;
    return static_cast<long>(SetFilePointer(m_handle, offset, nullptr, origin));
}

long CUT_File::GetSize() {
    if (!IsOpen()) return -1;
    return static_cast<long>(GetFileSize(m_handle, nullptr));
}
