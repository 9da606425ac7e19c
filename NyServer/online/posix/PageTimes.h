// The time-outs for a page.
#pragma once

// In seconds. Not constant, because a test shortens them.
struct PageTimes {
    long connect = 60;
    long silence = 30;  // without a byte
    long total = 120;
};

inline PageTimes pageTimes;
