// Included first: <afx.h> must precede the Windows headers.
#include "NyServer/detail/ExceptionBoundary.h"

#include "NyServer/socket/windows/HostLookUps.h"

namespace {

// A request cannot be cancelled twice. Some systems report success each time without cancelling
// anything.
bool isReallyCancelled(HANDLE request) {
    if (::WSACancelAsyncRequest(request) != 0) return true;
    return ::WSACancelAsyncRequest(request) != 0;
}

}  // namespace

// Held during the request, so that an announcement that arrives immediately waits until it is
// recorded.
bool HostLookUps::start(const std::function<HANDLE()>& request) {
    return NySe::zeroIfOutOfMemory([&] {
        const NySe::MutexLock lock(m_mutex);
        m_requests.reserve(m_requests.size() + 1);
        const HANDLE started = request();
        if (started) m_requests.push_back(started);
        return started != nullptr;
    });
}

void HostLookUps::finish(HANDLE request) {
    const NySe::MutexLock lock(m_mutex);
    std::erase(m_requests, request);
}

void HostLookUps::cancel() {
    const NySe::MutexLock lock(m_mutex);
    std::erase_if(m_requests, isReallyCancelled);
}

bool HostLookUps::arePending() const {
    const NySe::MutexLock lock(m_mutex);
    return !m_requests.empty();
}
