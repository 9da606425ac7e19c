#include "bench/wire/RawCalls.h"

#include <cstdio>

// The first of those that the process may use.
void bench::useOneCore() {
    DWORD_PTR usable = 0;
    DWORD_PTR all = 0;
    ::GetProcessAffinityMask(::GetCurrentProcess(), &usable, &all);
    const DWORD_PTR first = usable & (~usable + 1);
    if (::SetProcessAffinityMask(::GetCurrentProcess(), first) == 0)
        std::printf("not on one core\n");
}

bool bench::sendRaw(SOCKET socket, const std::string& bytes) {
    const int length = static_cast<int>(bytes.size());
    return ::send(socket, bytes.data(), length, 0) == length;
}

bool bench::receiveRaw(SOCKET socket, char* buffer, int count) {
    return ::recv(socket, buffer, count, 0) == count;
}

bool bench::awaitReadable(SOCKET socket, long seconds, long microseconds) {
    fd_set set{};
    set.fd_count = 1;
    set.fd_array[0] = socket;
    timeval timeOut{seconds, microseconds};
    return ::select(0, &set, nullptr, nullptr, &timeOut) == 1;
}
