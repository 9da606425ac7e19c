#include "tests/support/System.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <iterator>

int countThreads() {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                                          std::filesystem::directory_iterator()));
}

ULONGLONG processorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<ULONGLONG>(time.tv_sec) * 1000 +
           static_cast<ULONGLONG>(time.tv_nsec) / 1'000'000;
}

std::size_t handleLevel() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                      std::filesystem::directory_iterator()));
}

bool endsThreadsByForce() {
    return false;
}

SOCKET socketConnectedTo(int port) {
    SOCKET socket = 0;
    while (socket < 1024 && peerPortOf(socket) != port) ++socket;
    return socket < 1024 ? socket : INVALID_SOCKET;
}

NySe::UniqueSocket otherHandleOf(SOCKET socket) {
    return NySe::UniqueSocket(::fcntl(socket, F_DUPFD_CLOEXEC, 0));
}

void* allocatePages(std::size_t size) {
    return ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
}

void forbidAccess(void* pages, std::size_t size) {
    ::mprotect(pages, size, PROT_NONE);
}

void freePages(void* pages, std::size_t size) {
    ::munmap(pages, size);
}
