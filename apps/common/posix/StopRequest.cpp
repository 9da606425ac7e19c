#include "apps/common/StopRequest.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <stdexcept>

namespace apps {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
struct sigaction s_earlier[std::size(kSignals)];

int makeEvent() {
    const int made = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (made < 0) throw std::runtime_error("the event cannot be created");
    return made;
}

// Never closed: a signal may arrive on another thread while the handlers are removed.
int event() {
    static const int made = makeEvent();
    return made;
}

void onSignal(int) {
    const int error = errno;
    StopRequest::request();
    errno = error;
}

}  // namespace

StopRequest::StopRequest() {
    eventfd_t discarded;
    ::eventfd_read(event(), &discarded);
    struct sigaction action {};
    action.sa_handler = &onSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        ::sigaction(kSignals[i], nullptr, &s_earlier[i]);
        if (s_earlier[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
    }
}

StopRequest::~StopRequest() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        ::sigaction(kSignals[i], &s_earlier[i], nullptr);
}

bool StopRequest::wait(DWORD milliseconds) {
    using namespace std::chrono_literals;
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::milliseconds(milliseconds);
    pollfd waiting{event(), POLLIN, 0};
    for (;;) {
        const auto left =
            std::max(std::chrono::ceil<std::chrono::milliseconds>(end - steady_clock::now()), 0ms);
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready != -1 || errno != EINTR) return ready == 1;
    }
}

void StopRequest::request() {
    ::eventfd_write(event(), 1);
}

}  // namespace apps
