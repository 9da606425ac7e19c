// Where the parts of the window are.
#pragma once

#include <afxwin.h>

#include <array>

#include "NyServer/base/WindowsPrelude.h"

namespace apps::monitor {

// A length for screens of 96 dots per inch on one of `dpi`, in pixels.
int scaled(int length, int dpi);

// Text heights are the window's font's; all else is scaled.
struct LayoutInput {
    int width = 0;  // of what is above the status bar, in pixels
    int height = 0;
    int dpi = 96;
    int textHeight = 13;  // of a line of the window's font, in pixels
};

inline constexpr int kButtonCount = 6;

struct Layout {
    std::array<RECT, kButtonCount> buttons;
    RECT filterLabel;
    RECT filter;
    // Users, connections, locks.
    std::array<RECT, 3> titles;
    std::array<RECT, 3> lists;
    RECT logTitle;
    RECT log;
};

// Nothing overlaps, and nothing lies outside, in a window of at least smallestClient.
Layout layOut(const LayoutInput& input);

// `area` shrunk and moved as far as needed to lie within `room`.
RECT within(RECT area, const RECT& room);

// Moves the window to `area` of its parent.
void placeWindow(const CWnd& window, const RECT& area);

// The smallest size that has room for all, in pixels.
SIZE smallestClient(int dpi, int textHeight);

}  // namespace apps::monitor
