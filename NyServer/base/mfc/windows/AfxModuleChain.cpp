#include "AfxModuleChain.h"

#include "../AfxClassChain.h"
#include "../afxdllx.h"
#include "../afxwin.h"

#include <algorithm>
#include <vector>

namespace {

struct LinkedModule {
    HMODULE resources;
    bool isSystem;
};

// Keeps a module loaded while it is used.
class ModulePin {
  public:
    explicit ModulePin(HMODULE module) : m_isDataFile(isDataFile(module)) {
        if (m_isDataFile) return;
        ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                             reinterpret_cast<LPCWSTR>(module), &m_module);
    }
    ~ModulePin() {
        if (m_module != nullptr) ::FreeLibrary(m_module);
    }
    ModulePin(const ModulePin&) = delete;
    ModulePin& operator=(const ModulePin&) = delete;

    // Returns false if it has already been freed. A file mapped for its resources alone cannot be
    // pinned; its owner keeps it mapped while a module is linked with it.
    explicit operator bool() const { return m_isDataFile || m_module != nullptr; }

  private:
    // Handles of modules are their addresses; the loader marks those of mapped files in the low
    // bits.
    static bool isDataFile(HMODULE module) {
        return (reinterpret_cast<ULONG_PTR>(module) & 3) != 0;
    }

    bool m_isDataFile;
    HMODULE m_module = nullptr;
};

bool liesIn(HMODULE module, const void* address) {
    MEMORY_BASIC_INFORMATION region = {};
    return ::VirtualQuery(address, &region, sizeof region) != 0 && region.AllocationBase == module;
}

// The newest first.
std::vector<LinkedModule> linkedModules() {
    std::vector<LinkedModule> modules;
    const auto lock = AfxClassChain::lock();
    for (const AfxSharedModule* one = AfxClassChain::firstModule(); one != nullptr;
         one = one->next) {
        modules.push_back({one->library->m_hResource, one->library->m_bSystem != FALSE});
    }
    return modules;
}

// The modules to search, in this order. The current module is before all others of its kind.
std::vector<HINSTANCE> searchOrder(HINSTANCE current) {
    const auto modules = linkedModules();
    const auto isCurrentOfSystem = std::ranges::any_of(modules, [=](const LinkedModule& linked) {
        return linked.resources == current && linked.isSystem;
    });
    std::vector<HINSTANCE> order;
    for (const bool isSystem : {false, true}) {
        if (isCurrentOfSystem == isSystem) order.push_back(current);
        for (const LinkedModule& linked : modules) {
            if (linked.isSystem == isSystem) order.push_back(linked.resources);
        }
    }
    return order;
}

}  // namespace

CRuntimeClass* afxTakeClassesOf(HMODULE module) {
    const auto lock = AfxClassChain::lock();
    return AfxClassChain::take(
        [module](const CRuntimeClass* registered) { return liesIn(module, registered); });
}

HINSTANCE afxFindModule(const std::function<bool(HINSTANCE)>& has) {
    for (const HINSTANCE module : searchOrder(AfxGetResourceHandle())) {
        const ModulePin pin(module);
        if (pin && has(module)) return module;
    }
    return nullptr;
}

// The class library's own classes are searched last. Theirs is the first module to be loaded: all
// others need it.
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) AfxClassChain::setLibraryClasses(afxTakeClassesOf(instance));
    return TRUE;
}
