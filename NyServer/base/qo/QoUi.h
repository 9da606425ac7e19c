// Finds the module with the resources of another.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

namespace QoUi {

// Returns the loaded module with the resources of module `baseName` + `extension`: its variant for
// the language, named `baseName` + `language` + `extension`, if that is loaded and `language` is
// not empty; else the module itself. Null when neither is loaded. Nothing is loaded, and the module
// is not kept loaded. May be called from any thread.
NYBASE_API HINSTANCE getHInstanceModuleRc(const CString& baseName, const CString& extension,
                                          const CString& language);

}  // namespace QoUi
