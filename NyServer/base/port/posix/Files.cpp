#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <optional>

#include "NyServer/base/port/Port.h"
#include "NyServer/base/port/posix/Uninterrupted.h"

namespace port {
namespace {

// Positions and sizes keep their low 32 bits, as on Windows.
long lowBits(off_t value) {
    return static_cast<long>(static_cast<std::int32_t>(value));
}

// How the disposition opens a file, or -1 if there is no such disposition. A file is truncated only
// when it is open and may be written.
int creationFlags(DWORD disposition) {
    switch (disposition) {
        case CREATE_NEW:
            return O_CREAT | O_EXCL;
        case CREATE_ALWAYS:
        case OPEN_ALWAYS:
            return O_CREAT;
        case OPEN_EXISTING:
        case TRUNCATE_EXISTING:
            return 0;
        default:
            return -1;
    }
}

int accessFlags(DWORD access) {
    if (!(access & GENERIC_WRITE)) return O_RDONLY;
    return (access & GENERIC_READ) ? O_RDWR : O_WRONLY;
}

// Does not wait for another process at a pipe; reads and writes do.
int openAtOnce(const char* name, int flags) {
    const int file =
        uninterrupted([&] { return ::open(name, flags | O_CLOEXEC | O_NONBLOCK, 0666); });
    if (file != -1) ::fcntl(file, F_SETFL, ::fcntl(file, F_GETFL) & ~O_NONBLOCK);
    return file;
}

// Returns whether the file may be shared: by any number of readers, or by one writer. Only files
// that this library has open count. A file system without locks is used without them.
bool isShareable(int file, DWORD access) {
    const int kind = (access & GENERIC_WRITE) ? LOCK_EX : LOCK_SH;
    return ::flock(file, kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool isFolder(int file) {
    struct stat status {};
    return ::fstat(file, &status) != 0 || S_ISDIR(status.st_mode);
}

// Devices have no size.
bool truncate(int file) {
    return ::ftruncate(file, 0) == 0 || errno == EINVAL;
}

bool mustTruncate(DWORD disposition) {
    return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
}

}  // namespace

FileHandle openFile(const WCHAR* path, DWORD access, DWORD disposition) try {
    const std::string name = toUtf8(path, std::char_traits<WCHAR>::length(path));
    const int creation = creationFlags(disposition);
    const bool isReadOnly = (access & GENERIC_WRITE) == 0;
    if (creation == -1 || (disposition == TRUNCATE_EXISTING && isReadOnly)) return kNoFile;
    const int file = openAtOnce(name.c_str(), accessFlags(access) | creation);
    if (file == -1) return kNoFile;
    const bool isUsable = !isFolder(file) && isShareable(file, access);
    if (isUsable && (!mustTruncate(disposition) || truncate(file))) return file;
    ::close(file);
    return kNoFile;
} catch (const std::bad_alloc&) {
    return kNoFile;
}

void closeFile(FileHandle file) {
    ::close(file);
}

int readFile(FileHandle file, void* buffer, DWORD count) {
    return static_cast<int>(uninterrupted([&] { return ::read(file, buffer, count); }));
}

int writeFile(FileHandle file, const void* buffer, DWORD count) {
    const auto* next = static_cast<const char*>(buffer);
    DWORD left = count;
    while (left > 0) {
        const ssize_t written = uninterrupted([&] { return ::write(file, next, left); });
        if (written == -1) return -1;
        next += written;
        left -= static_cast<DWORD>(written);
    }
    return static_cast<int>(count);
}

long seekFile(FileHandle file, long offset, DWORD origin) {
    constexpr int kOrigins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (origin >= std::size(kOrigins)) return -1;
    const off_t position = ::lseek(file, static_cast<std::int32_t>(offset), kOrigins[origin]);
    return position == -1 ? -1 : lowBits(position);
}

long sizeOfFile(FileHandle file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 ? lowBits(status.st_size) : -1;
}

}  // namespace port
