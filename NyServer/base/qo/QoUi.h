// Where modules keep their resources.
#pragma once

#include <afxwin.h>

#include "NyServer/base/support/NyBaseApi.h"

namespace QoUi {

// The loaded module that holds the resources of module `baseName` + `extension`: its variant for
// the language, named `baseName` + `language` + `extension`, where that is loaded, else the module
// itself; an empty `language` asks for the module itself. Null when neither is loaded. Nothing is
// loaded, and the module is not kept loaded. May be called from any thread.
NYBASE_API HINSTANCE getHInstanceModuleRc(const CString& baseName, const CString& extension,
                                          const CString& language);

}  // namespace QoUi
