// A notification as a host receives it.
#pragma once

#include <chrono>
#include <cstring>
#include <string>

#include "tests/support/Gate.h"

// How long to wait for what must come; a crowded machine takes its time.
inline constexpr std::chrono::seconds kGenerously{120};

inline std::string wireOf(int value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

// A message as the central server sends it.
inline std::string frame(int action, const std::string& body = "") {
    return wireOf(action) + wireOf(static_cast<int>(body.size())) + body;
}

// A message file.
struct PostedMessage {
    std::string bytes;

    int action() const {
        int action = -1;
        if (bytes.size() >= sizeof action) std::memcpy(&action, bytes.data(), sizeof action);
        return action;
    }
    std::string payload() const { return bytes.size() >= 8 ? bytes.substr(8) : std::string(); }
};

// The messages that the window has once they are `wanted`, or when none has come for kGenerously.
template <class Window>
auto messagesOnceThereAre(const Window& window, size_t wanted) {
    for (size_t seen = 0;
         window.count() < wanted && eventually([&] { return window.count() > seen; }, kGenerously);)
        seen = window.count();
    return window.messages();
}
