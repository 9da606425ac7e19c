#include "NyServer/host/windows/ModuleResources.h"

#include <QoUi.h>

#include <atomic>

namespace {

constinit std::atomic<HINSTANCE> cachedHandle = nullptr;

}  // namespace

HINSTANCE moduleresources::handle() {
    if (const HINSTANCE cached = cachedHandle) return cached;
    const HINSTANCE found = QoUi::getHInstanceModuleRc(L"NyServerDll", L".dll", L"");
    cachedHandle = found;
    return found;
}

CString moduleresources::loadString(UINT id) {
    const NyServerDllLoadString loader(id);
    return loader.loadString();
}

NyServerDllSwitchResource::NyServerDllSwitchResource()
    : QoUiSwitchResource(moduleresources::handle()) {}

void NyServerDllSwitchResource::setModuleResourceHandle() {
    setResourceHandle(moduleresources::handle());
}

HINSTANCE NyServerDllLoadString::getResourceHandle() const {
    return moduleresources::handle();
}
