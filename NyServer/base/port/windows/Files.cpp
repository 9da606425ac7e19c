#include "NyServer/base/port/Port.h"

namespace port {

FileHandle openFile(const WCHAR* path, DWORD access, DWORD disposition) {
    return ::CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                         nullptr);
}

void closeFile(FileHandle file) {
    ::CloseHandle(file);
}

int readFile(FileHandle file, void* buffer, DWORD count) {
    DWORD done = 0;
    return ::ReadFile(file, buffer, count, &done, nullptr) ? static_cast<int>(done) : -1;
}

int writeFile(FileHandle file, const void* buffer, DWORD count) {
    DWORD done = 0;
    return ::WriteFile(file, buffer, count, &done, nullptr) ? static_cast<int>(done) : -1;
}

long seekFile(FileHandle file, long offset, DWORD origin) {
    return static_cast<long>(::SetFilePointer(file, offset, nullptr, origin));
}

long sizeOfFile(FileHandle file) {
    return static_cast<long>(::GetFileSize(file, nullptr));
}

}  // namespace port
