#pragma once

namespace apps::monitor {

// Notifications that the listener has posted and the window has not consumed.
struct Backlog {
    int posted = 0;  // notifications
    long limit = 0;  // above it the listener stops reading until all are consumed
    bool isPaused = false;
};

}  // namespace apps::monitor
