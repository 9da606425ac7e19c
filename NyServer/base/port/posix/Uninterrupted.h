#pragma once

#include <cerrno>

namespace port {

// Repeats a call that a signal interrupts. Returns its result.
template <class Call>
auto uninterrupted(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

}  // namespace port
