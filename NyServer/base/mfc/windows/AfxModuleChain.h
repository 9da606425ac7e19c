// The classes of modules, and the order in which their resources are searched. Internal to the
// class library.
#pragma once

#include "../CObject.h"

#include <functional>

// Removes the classes in the module's image, which has registered them while it was loaded, from
// the application's. Returns their list, newest first.
CRuntimeClass* afxTakeClassesOf(HMODULE module);

// Returns the first module for which `has` returns true: the current resource handle's, then the
// extension modules, the newest first, those of the system last, and the current one just before
// those if it is linked as one of them; null if there is none. `has` may call anything: no lock is
// held, and its module stays loaded during the call.
HINSTANCE afxFindModule(const std::function<bool(HINSTANCE)>& has);
