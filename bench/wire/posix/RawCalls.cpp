#include "bench/wire/RawCalls.h"

#include <poll.h>
#include <sched.h>

#include <cstdio>

// The one that runs this.
void bench::useOneCore() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(::sched_getcpu(), &one);
    if (::sched_setaffinity(0, sizeof one, &one) != 0) std::printf("not on one core\n");
}

bool bench::sendRaw(SOCKET socket, const std::string& bytes) {
    return ::send(socket, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
}

bool bench::receiveRaw(SOCKET socket, char* buffer, int count) {
    return ::recv(socket, buffer, static_cast<std::size_t>(count), 0) == count;
}

bool bench::awaitReadable(SOCKET socket, long seconds, long microseconds) {
    pollfd entry{socket, POLLIN, 0};
    return ::poll(&entry, 1, static_cast<int>(seconds * 1000 + microseconds / 1000)) == 1;
}
