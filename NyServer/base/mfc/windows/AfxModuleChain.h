// What modules own and in which order their resources are searched. Internal to the class library.
#pragma once

#include "../CObject.h"

#include <functional>

// Takes the classes that lie in the module's image from the application's: it has registered them
// while it was loaded. Their list, newest first.
CRuntimeClass* afxTakeClassesOf(HMODULE module);

// The first module that `has` says yes to: the current resource handle's, then the extension
// modules, the newest first, those of the system last; null when none does. `has` may call
// anything: no lock is held, and the module it is asked about stays loaded meanwhile.
HINSTANCE afxFindModule(const std::function<bool(HINSTANCE)>& has);
