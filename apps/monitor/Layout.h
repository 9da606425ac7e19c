// The positions of the parts of the window.
#pragma once

#include <afxwin.h>

#include <array>

#include "NyServer/base/WindowsPrelude.h"

namespace apps::monitor {

// Scales a length for 96 dots per inch to `dpi`. Returns pixels.
int scaled(int length, int dpi);

// Text heights are the window's font's; all else is scaled.
struct LayoutInput {
    int width = 0;  // of the area above the status bar, in pixels
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

// In a window of at least smallestClient nothing overlaps and nothing is outside.
Layout layOut(const LayoutInput& input);

// Returns `area` shrunk and moved as far as needed to be within `bounds`.
RECT within(RECT area, const RECT& bounds);

// Moves the window to `area` of its parent.
void placeWindow(const CWnd& window, const RECT& area);

// Returns the smallest size in which all parts fit, in pixels.
SIZE smallestClient(int dpi, int textHeight);

}  // namespace apps::monitor
