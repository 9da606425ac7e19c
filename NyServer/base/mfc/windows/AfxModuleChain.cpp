#include "AfxModuleChain.h"

#include "../AfxClassChain.h"
#include "../afxdllx.h"
#include "../afxwin.h"

#include <vector>

namespace {

struct LinkedModule {
    HMODULE module;
    HMODULE resources;
};

// Keeps a module loaded while it is asked something.
class ModulePin {
  public:
    explicit ModulePin(HMODULE module) {
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(module), &m_module);
    }
    ~ModulePin() {
        if (m_module != nullptr) ::FreeLibrary(m_module);
    }
    ModulePin(const ModulePin&) = delete;
    ModulePin& operator=(const ModulePin&) = delete;

    // False when it has been freed already.
    explicit operator bool() const { return m_module != nullptr; }

  private:
    HMODULE m_module = nullptr;
};

bool liesIn(HMODULE module, const void* address) {
    MEMORY_BASIC_INFORMATION region = {};
    return ::VirtualQuery(address, &region, sizeof region) != 0 && region.AllocationBase == module;
}

void appendLinked(std::vector<LinkedModule>& modules, bool isSystem) {
    for (const AfxSharedModule* one = AfxClassChain::firstModule(); one != nullptr;
         one = one->next) {
        if ((one->library->m_bSystem != FALSE) == isSystem) {
            modules.push_back({one->library->m_hModule, one->library->m_hResource});
        }
    }
}

std::vector<LinkedModule> linkedModules() {
    std::vector<LinkedModule> modules;
    const auto lock = AfxClassChain::lock();
    appendLinked(modules, false);
    appendLinked(modules, true);
    return modules;
}

}  // namespace

CRuntimeClass* afxTakeClassesOf(HMODULE module) {
    const auto lock = AfxClassChain::lock();
    return AfxClassChain::take(
        [module](const CRuntimeClass* registered) { return liesIn(module, registered); });
}

HINSTANCE afxFindModule(const std::function<bool(HINSTANCE)>& has) {
    const HINSTANCE current = AfxGetResourceHandle();
    if (has(current)) return current;
    for (const LinkedModule& linked : linkedModules()) {
        const ModulePin pin(linked.module);
        if (pin && has(linked.resources)) return linked.resources;
    }
    return nullptr;
}

// The class library's own classes are searched last. Theirs is the first module to be loaded: all
// others need it.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) AfxClassChain::setLibraryClasses(afxTakeClassesOf(instance));
    return TRUE;
}
