#include "NyServer/host/windows/ModuleEntry.h"

#include "NyServer/detail/ExceptionBoundary.h"

namespace {

int attach(AFX_EXTENSION_MODULE& state, HINSTANCE instance) {
    return AfxInitExtensionModule(state, instance) && moduleentry::link(state) ? 1 : 0;
}

}  // namespace

int moduleentry::onEvent(AFX_EXTENSION_MODULE& state, HINSTANCE instance, DWORD reason) {
    if (reason == DLL_PROCESS_ATTACH) return attach(state, instance);
    if (reason == DLL_PROCESS_DETACH) AfxTermExtensionModule(state);
    return 1;
}

bool moduleentry::link(AFX_EXTENSION_MODULE& state) {
    // The chain owns it until the module is unloaded.
    return NySe::zeroIfOutOfMemory([&state] { return new CDynLinkLibrary(state); }) != nullptr;
}
