#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "NyServer/base/port/Port.h"
#include "NyServer/base/port/posix/SocketErrors.h"
#include "NyServer/base/port/posix/Uninterrupted.h"

namespace port {
namespace {

const sockaddr* general(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

sockaddr* general(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

// 0 if the socket has no such option.
int optionOf(SOCKET socket, int option) {
    int value = 0;
    socklen_t length = sizeof value;
    return ::getsockopt(socket, SOL_SOCKET, option, &value, &length) == 0 ? value : 0;
}

bool isListening(SOCKET socket) {
    return optionOf(socket, SO_ACCEPTCONN) != 0;
}

void setAddressReuse(SOCKET socket, int isReused) {
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &isReused, sizeof isReused);
}

constexpr long kUnconnectedPause = 10;  // ms

// Returns the time, cut to what fits every calculation with it.
ULONGLONG millisecondsOf(long seconds, long microseconds) {
    constexpr long kMost = 1'000'000'000;
    const long milliseconds =
        std::min(seconds, kMost) * 1000 + microseconds / 1000 + (microseconds % 1000 > 0);
    return static_cast<ULONGLONG>(milliseconds);
}

enum class Stream { notConnected, open, ended, none };

// Returns the state of a stream socket's connection. A failed connect leaves it not connected.
Stream streamOf(SOCKET socket) {
    tcp_info info{};
    socklen_t length = sizeof info;
    if (::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return Stream::none;
    if (info.tcpi_state != TCP_CLOSE) return Stream::open;
    return info.tcpi_rtt == 0 ? Stream::notConnected : Stream::ended;  // the peer never answered
}

bool isTimeOut(int option) {
    return option == SO_RCVTIMEO || option == SO_SNDTIMEO;
}

bool isBufferSize(int option) {
    return option == SO_RCVBUF || option == SO_SNDBUF;
}

int getTimeOut(SOCKET socket, int option, int& milliseconds) {
    timeval time{};
    socklen_t length = sizeof time;
    if (::getsockopt(socket, SOL_SOCKET, option, &time, &length) != 0) return -1;
    milliseconds = static_cast<int>(time.tv_sec * 1000 + time.tv_usec / 1000);
    return 0;
}

int setTimeOut(SOCKET socket, int option, int milliseconds) {
    const int limit = std::max(milliseconds, 0);  // 0: none
    const timeval time{limit / 1000, limit % 1000 * 1000L};
    return ::setsockopt(socket, SOL_SOCKET, option, &time, sizeof time);
}

bool isBlocking(SOCKET socket) {
    return (::fcntl(socket, F_GETFL) & O_NONBLOCK) == 0;
}

// Returns the system's error number for a send that failed with EPIPE: not connected, reset by the
// peer, or ended by finishSending. If the peer has closed too, the last two look the same: reset.
int errorOfBrokenPipe(SOCKET socket) {
    const Stream stream = streamOf(socket);
    if (stream == Stream::notConnected) return ENOTCONN;
    return stream == Stream::ended ? ECONNRESET : ESHUTDOWN;
}

// Returns the result of a transfer. The end of a blocking one at its time-out has an error number
// of its own in Winsock.
int transferred(SOCKET socket, ssize_t result) {
    if (result == -1 && errno == EWOULDBLOCK && isBlocking(socket)) errno = ETIMEDOUT;
    if (result == -1 && errno == EPIPE) errno = errorOfBrokenPipe(socket);
    return static_cast<int>(result);
}

// Waits for the events. Returns those that occurred, 0 if none did in time, -1 on failure.
int pollFor(SOCKET socket, short events, long milliseconds) {
    if (socket < 0) {  // which poll would ignore
        errno = ENOTSOCK;
        return -1;
    }
    const ULONGLONG deadline = port::milliseconds() + static_cast<ULONGLONG>(milliseconds);
    for (;;) {
        pollfd entry{socket, events, 0};
        const ULONGLONG now = port::milliseconds();
        const int left = now < deadline
                             ? static_cast<int>(std::min<ULONGLONG>(deadline - now, 1'000'000'000))
                             : 0;
        const int count = ::poll(&entry, 1, left);
        if (count == -1 && errno == EINTR) continue;
        if (count == 1 && (entry.revents & POLLNVAL)) {
            errno = ENOTSOCK;
            return -1;
        }
        return count == 1 ? entry.revents : count;
    }
}

// Returns whether a transfer that a signal has interrupted may go on. The system would begin its
// time-out again: the rest of it passes here.
bool mayContinue(SOCKET socket, int timeOutOption, ULONGLONG start) {
    int limit = 0;
    if (getTimeOut(socket, timeOutOption, limit) != 0) return false;
    if (limit == 0) return true;
    const short event = timeOutOption == SO_RCVTIMEO ? POLLIN : POLLOUT;
    const ULONGLONG passed = milliseconds() - start;
    const int found = pollFor(socket, event, std::max(0L, limit - static_cast<long>(passed)));
    if (found == 0) errno = ETIMEDOUT;
    return found > 0;
}

// Makes the call until no signal interrupts it. It ends at its time-out all the same.
template <class Call>
ssize_t transfer(SOCKET socket, int timeOutOption, int length, Call call) {
    if (length < 0) {
        errno = EFAULT;
        return -1;
    }
    const ULONGLONG start = milliseconds();
    for (;;) {
        const ssize_t result = call();
        if (result != -1 || errno != EINTR) return transferred(socket, result);
        if (!mayContinue(socket, timeOutOption, start)) return -1;
    }
}

// Receives as recvmsg. A datagram that is longer than the buffer is an error.
int receiveMessage(SOCKET socket, char* buffer, int length, sockaddr_in* peer, int flags) {
    iovec piece{buffer, static_cast<std::size_t>(length)};
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_name = peer;
    message.msg_namelen = peer ? sizeof *peer : 0;
    const ssize_t result =
        transfer(socket, SO_RCVTIMEO, length, [&] { return ::recvmsg(socket, &message, flags); });
    if (result < 0 || !(message.msg_flags & MSG_TRUNC)) return static_cast<int>(result);
    errno = EMSGSIZE;
    return -1;
}

}  // namespace

bool startSockets(WSADATA& data) {
    data = {2, 2};
    return true;
}

void stopSockets() {}

int lastSocketError() {
    return winsockError(errno);
}

SOCKET createSocket(int family, int type, int protocol) {
    return ::socket(family, type | SOCK_CLOEXEC, protocol);
}

bool shutDown(SOCKET socket) {
    if (isListening(socket)) {  // which would stop listening, and report success
        errno = ENOTCONN;
        return false;
    }
    return ::shutdown(socket, SHUT_RDWR) == 0;
}

bool finishSending(SOCKET socket) {
    return ::shutdown(socket, SHUT_WR) == 0;
}

bool stopListening(SOCKET socket) {
    return isListening(socket) && ::shutdown(socket, SHUT_RDWR) == 0;
}

bool closeSocket(SOCKET socket) {
    stopListening(socket);
    return ::close(socket) == 0;
}

bool bindSocket(SOCKET socket, const sockaddr_in& address) {
    if (::bind(socket, general(address), sizeof address) == 0) return true;
    if (errno != EADDRINUSE || optionOf(socket, SO_TYPE) != SOCK_STREAM) return false;
    setAddressReuse(socket, 1);
    const bool isBound = ::bind(socket, general(address), sizeof address) == 0;
    setAddressReuse(socket, 0);  // which never fails, and leaves the error number
    return isBound;
}

// Connections that are accepted have the option, too, so that their ends, for which the system
// keeps the port for a minute, do not keep the next listener from it. A socket that is only bound
// does not have it: two could be bound to one port.
bool listenOn(SOCKET socket, int queueSize) {
    setAddressReuse(socket, 1);
    return ::listen(socket, queueSize) == 0;
}

SOCKET acceptFrom(SOCKET listener, sockaddr_in& peer) {
    return uninterrupted([&] {
        socklen_t length = sizeof peer;
        return ::accept4(listener, general(peer), &length, SOCK_CLOEXEC);
    });
}

// An interrupted connect goes on by itself.
bool connectTo(SOCKET socket, const sockaddr_in& peer) {
    if (::connect(socket, general(peer), sizeof peer) == 0) return true;
    if (errno != EINTR) return false;
    pollfd entry{socket, POLLOUT, 0};
    uninterrupted([&] { return ::poll(&entry, 1, -1); });
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return false;
    errno = error;
    return error == 0;
}

int send(SOCKET socket, const char* data, int length, int flags) {
    return static_cast<int>(transfer(socket, SO_SNDTIMEO, length, [&] {
        return ::send(socket, data, static_cast<std::size_t>(length), flags | MSG_NOSIGNAL);
    }));
}

int receive(SOCKET socket, char* buffer, int length, int flags) {
    return receiveMessage(socket, buffer, length, nullptr, flags);
}

int sendTo(SOCKET socket, const char* data, int length, const sockaddr_in& peer) {
    return static_cast<int>(transfer(socket, SO_SNDTIMEO, length, [&] {
        return ::sendto(socket, data, static_cast<std::size_t>(length), MSG_NOSIGNAL, general(peer),
                        sizeof peer);
    }));
}

int receiveFrom(SOCKET socket, char* buffer, int length, sockaddr_in& peer) {
    return receiveMessage(socket, buffer, length, &peer, 0);
}

int waitFor(SOCKET socket, Wanted wanted, long seconds, long microseconds) {
    if (seconds < 0 || microseconds < 0) {
        errno = EINVAL;
        return -1;
    }
    const short event = wanted == Wanted::readable ? POLLIN : POLLOUT;
    const ULONGLONG deadline = milliseconds() + millisecondsOf(seconds, microseconds);
    for (;;) {
        const ULONGLONG now = milliseconds();
        const long left = static_cast<long>(deadline - std::min(now, deadline));
        const int found = pollFor(socket, event, left);
        if (found <= 0) return found;
        if (!(found & POLLHUP) || streamOf(socket) != Stream::notConnected) return 1;
        // The system reports a socket that is not connected at once, but it is ready for nothing.
        // The wait for the end of a connect is over when that has failed.
        const bool isFailed = wanted == Wanted::writable && (found & POLLERR);
        if (left == 0 || isFailed) return 0;
        sleep(static_cast<DWORD>(std::min(left, kUnconnectedPause)));
    }
}

Readiness waitForConnect(SOCKET socket, long microseconds) {
    const int found = pollFor(socket, POLLOUT, (microseconds + 999) / 1000);
    if (found == -1 || (found & POLLERR)) return Readiness::failed;
    return found & POLLOUT ? Readiness::ready : Readiness::pending;
}

sockaddr_in localAddress(SOCKET socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(socket, general(address), &length);
    return address;
}

sockaddr_in peerAddress(SOCKET socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getpeername(socket, general(address), &length);
    return address;
}

int getSocketOption(SOCKET socket, int option, void* value, int length) {
    int& number = *static_cast<int*>(value);
    if (isTimeOut(option)) return getTimeOut(socket, option, number);
    socklen_t size = static_cast<socklen_t>(length);
    if (::getsockopt(socket, SOL_SOCKET, option, value, &size) != 0) return -1;
    if (isBufferSize(option)) number /= 2;  // the system reserves and reports twice the size
    if (option == SO_ERROR) number = winsockError(number);
    return 0;
}

int setSocketOption(SOCKET socket, int option, const void* value, int length) {
    if (isTimeOut(option)) return setTimeOut(socket, option, *static_cast<const int*>(value));
    return ::setsockopt(socket, SOL_SOCKET, option, value, static_cast<socklen_t>(length));
}

int setNoDelay(SOCKET socket) {
    const int on = 1;
    return ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool setBlocking(SOCKET socket, bool isBlocking) {
    int nonBlocking = isBlocking ? 0 : 1;
    return ::ioctl(socket, FIONBIO, &nonBlocking) == 0;
}

unsigned long waitingBytes(SOCKET socket) {
    int bytes = 0;
    return ::ioctl(socket, FIONREAD, &bytes) == 0 ? static_cast<unsigned long>(bytes) : 0;
}

}  // namespace port
