// The system's font for windows.
#pragma once

#include "NyServer/base/UniqueHandle.h"
#include "NyServer/base/WindowsPrelude.h"

namespace apps::monitor {

using UniqueFont = UniqueHandle<HFONT, ::DeleteObject>;

// As the user has set it, for a screen of `dpi`. Null when the system has none.
UniqueFont makeWindowFont(int dpi);

// The height of a line in that font, in pixels.
int textHeight(HFONT font);

}  // namespace apps::monitor
