#include <fcntl.h>
#include <poll.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <vector>

#include "NyServer/base/WindowsPrelude.h"

namespace {

// A send to a peer that has gone fails; it does not end the program.
[[maybe_unused]] const auto kNoSignal = ::signal(SIGPIPE, SIG_IGN);

// Relaxed, so that counting orders no other accesses: races must stay visible.
std::atomic<int> winsockStarts = 0;

bool isTimeOut(int level, int option) {
    return level == SOL_SOCKET && (option == SO_RCVTIMEO || option == SO_SNDTIMEO);
}

// What a select asks of sockets, and what it found.
class Poll {
  public:
    void add(const WinsockSet* set, short events) {
        for (u_int i = 0; set && i < set->fd_count; ++i)
            m_entries.push_back({static_cast<int>(set->fd_array[i]), events, 0});
    }
    int wait(const timeval* timeOut) {
        if (m_entries.empty()) return fail(EINVAL);
        if (std::any_of(m_entries.begin(), m_entries.end(), [](auto& e) { return e.fd < 0; }))
            return fail(ENOTSOCK);
        const long ms = timeOut ? timeOut->tv_sec * 1000 + (timeOut->tv_usec + 999) / 1000 : -1;
        if (::poll(m_entries.data(), m_entries.size(), static_cast<int>(ms)) < 0) return -1;
        return has(m_entries.begin(), POLLNVAL) ? fail(ENOTSOCK) : 0;
    }
    // Leaves those of the next set in it that have any of the events and none of the others.
    int take(WinsockSet* set, short wanted, short unwanted) {
        if (!set) return 0;
        u_int count = 0;
        for (u_int i = 0; i < set->fd_count; ++i, ++m_taken) {
            const short found = m_entries[m_taken].revents;
            if ((found & wanted) && !(found & unwanted)) set->fd_array[count++] = set->fd_array[i];
        }
        set->fd_count = count;
        return static_cast<int>(count);
    }

  private:
    static int fail(int error) {
        errno = error;
        return SOCKET_ERROR;
    }
    bool has(std::vector<pollfd>::const_iterator from, short event) const {
        return std::any_of(from, m_entries.end(), [&](auto& e) { return e.revents & event; });
    }

    std::vector<pollfd> m_entries;
    size_t m_taken = 0;
};

template <class Call>
int withLength(int* length, Call call) {
    socklen_t size = length ? static_cast<socklen_t>(*length) : 0;
    const int result = static_cast<int>(call(length ? &size : nullptr));
    if (length) *length = static_cast<int>(size);
    return result;
}

}  // namespace

int WSAStartup(WORD version, WSADATA* data) {
    winsockStarts.fetch_add(1, std::memory_order_relaxed);
    *data = {version, version};
    return 0;
}

int WSACleanup() {
    if (winsockStarts.fetch_sub(1, std::memory_order_relaxed) > 0) return 0;
    winsockStarts.fetch_add(1, std::memory_order_relaxed);
    return SOCKET_ERROR;
}

int WSAGetLastError() {
    switch (errno) {
        case EINPROGRESS:
            return WSAEWOULDBLOCK;
        case EBADF:
            return WSAENOTSOCK;
        case EPIPE:
            return WSAESHUTDOWN;
        default:
            return errno;
    }
}

int closesocket(SOCKET socket) {
    int isListening = 0;
    socklen_t length = sizeof isListening;
    const int fd = static_cast<int>(socket);
    ::getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, static_cast<void*>(&isListening), &length);
    if (isListening) ::shutdown(fd, SHUT_RDWR);
    return ::close(fd);
}

int ioctlsocket(SOCKET socket, long command, u_long* argument) {
    int value = static_cast<int>(*argument);
    const int result = ::ioctl(static_cast<int>(socket), static_cast<u_long>(command), &value);
    *argument = static_cast<u_long>(value);
    return result;
}

SOCKET accept(SOCKET socket, sockaddr* address, int* length) {
    return static_cast<SOCKET>(withLength(length, [&](socklen_t* size) {
        return ::accept(static_cast<int>(socket), address, size);
    }));
}

int getsockname(SOCKET socket, sockaddr* address, int* length) {
    return withLength(length, [&](socklen_t* size) {
        return ::getsockname(static_cast<int>(socket), address, size);
    });
}

int recvfrom(SOCKET socket, char* buffer, int size, int flags, sockaddr* from, int* length) {
    return withLength(length, [&](socklen_t* fromSize) {
        return ::recvfrom(static_cast<int>(socket), buffer, static_cast<size_t>(size), flags, from,
                          fromSize);
    });
}

int select(int, WinsockSet* readable, WinsockSet* writable, WinsockSet* failed,
           const timeval* timeOut) {
    Poll poll;
    poll.add(readable, POLLIN);
    poll.add(writable, POLLOUT);
    poll.add(failed, POLLPRI);
    if (poll.wait(timeOut) != 0) return SOCKET_ERROR;
    int count = poll.take(readable, POLLIN | POLLHUP | POLLERR, 0);
    count += poll.take(writable, POLLOUT, POLLERR);
    return count + poll.take(failed, POLLPRI | POLLERR, 0);
}

int getsockopt(SOCKET socket, int level, int option, char* value, int* length) {
    const int fd = static_cast<int>(socket);
    if (isTimeOut(level, option)) {
        timeval time{};
        socklen_t size = sizeof time;
        const int result = ::getsockopt(fd, level, option, static_cast<void*>(&time), &size);
        *reinterpret_cast<int*>(value) = static_cast<int>(time.tv_sec * 1000 + time.tv_usec / 1000);
        return result;
    }
    return withLength(length, [&](socklen_t* size) {
        return ::getsockopt(fd, level, option, static_cast<void*>(value), size);
    });
}

int setsockopt(SOCKET socket, int level, int option, const char* value, int length) {
    const int fd = static_cast<int>(socket);
    if (isTimeOut(level, option)) {
        const int milliseconds = *reinterpret_cast<const int*>(value);
        const timeval time{milliseconds / 1000, milliseconds % 1000 * 1000L};
        return ::setsockopt(fd, level, option, static_cast<const void*>(&time), sizeof time);
    }
    return ::setsockopt(fd, level, option, static_cast<const void*>(value),
                        static_cast<socklen_t>(length));
}
