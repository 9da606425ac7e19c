#pragma once

#include "NyServer/base/WindowsPrelude.h"

namespace apps {

enum class Readiness { notYet, ready, failed };

// Whether the socket takes bytes, or a connect has ended one way or the other. Waits for it for
// 100 ms at most.
inline Readiness waitWritable(SOCKET socket) {
    fd_set writable{};
    FD_SET(socket, &writable);
    fd_set failed = writable;
    timeval step{0, 100'000};
    if (::select(0, nullptr, &writable, &failed, &step) == SOCKET_ERROR || failed.fd_count > 0)
        return Readiness::failed;
    return writable.fd_count > 0 ? Readiness::ready : Readiness::notYet;
}

}  // namespace apps
