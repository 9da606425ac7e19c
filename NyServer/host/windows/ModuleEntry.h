// Attaching and detaching of an extension module. Internal to the module.
#pragma once

#include <afxdllx.h>

#include "NyServer/base/WindowsPrelude.h"

namespace moduleentry {

// The entry point of the module. Returns 1; 0 if the process attaches and the module cannot be
// linked to the chain. Then the loader refuses the module.
int onEvent(AFX_EXTENSION_MODULE& state, HINSTANCE instance, DWORD reason);

// Links the module to the chain once more; AfxTermExtensionModule removes it. Returns false if out
// of memory.
bool link(AFX_EXTENSION_MODULE& state);

}  // namespace moduleentry
