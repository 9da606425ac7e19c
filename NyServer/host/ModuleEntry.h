// What an extension module does when it comes and goes. Internal to the module.
#pragma once

#include <afxdllx.h>

#include "NyServer/base/WindowsPrelude.h"

namespace moduleentry {

// The module entry: 1, or 0 when the process attaches and the module cannot join the chain. Then
// the loader refuses the module.
int onEvent(AFX_EXTENSION_MODULE& state, HINSTANCE instance, DWORD reason);

// Links the module into the chain once more; AfxTermExtensionModule takes it out. False when no
// memory is left.
bool link(AFX_EXTENSION_MODULE& state);

}  // namespace moduleentry
