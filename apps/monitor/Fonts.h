// The system's font for windows.
#pragma once

#include "NyServer/base/detail/WindowsHandles.h"
#include "NyServer/base/WindowsPrelude.h"

namespace apps::monitor {

using UniqueFont = NySe::UniqueHandle<HFONT, ::DeleteObject>;

// Returns the font that the user has set, for a screen of `dpi`; null if the system has none.
UniqueFont makeWindowFont(int dpi);

// Returns the height of a line in that font, in pixels.
int textHeight(HFONT font);

}  // namespace apps::monitor
