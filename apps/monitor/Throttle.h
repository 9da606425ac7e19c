#pragma once

// How far the window is behind its listener.
struct Throttle {
    int posted = 0;  // notifications posted and not yet consumed
    long limit = 0;  // above so many the listener reads nothing more until all are consumed
    bool isPaused = false;
};
