#pragma once

#include <chrono>
#include <cstddef>

// What the server bears from one listener.
struct PushLimits {
    // What is queued at most. A notification that finds no room is dropped.
    std::size_t queuedNotifications = 10'000;
    std::size_t queuedBytes = std::size_t{32} * 1024 * 1024;
    // Users register first and start their listener on the port that they get.
    std::chrono::milliseconds connectPatience{10'000};
    // Without a byte taken. One that pauses now and then is slow, but not lost.
    std::chrono::milliseconds sendPatience{5'000};
    // How often it is asked for a sign of life; 0: never.
    std::chrono::milliseconds probeInterval{0};
    // For the answer. As long as the clients of this server wait for one.
    std::chrono::milliseconds probePatience{15'000};
};
