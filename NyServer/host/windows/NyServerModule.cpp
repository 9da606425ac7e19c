// Included first: it must precede the Windows headers.
#include <afx.h>

#include "NyServer/host/NyServerModule.h"

#include "NyServer/base/WindowsPrelude.h"
#include "NyServer/host/windows/ModuleEntry.h"

unsigned int NySe::_TM_NYSERVERMESSAGE = RegisterWindowMessageW(L"TM_NYSERVERMESSAGE");

namespace {

constinit AFX_EXTENSION_MODULE moduleState = {};

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    return moduleentry::onEvent(moduleState, instance, reason);
}

void NySe::initDll() {
    moduleentry::link(moduleState);
}
