#include "../afxdllx.h"

#include "../AfxClassChain.h"
#include "AfxModuleChain.h"

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CObject)

namespace {

// The newest link of `module`, or of any module for null; null when there is none.
CDynLinkLibrary* findLink(HMODULE module) {
    const auto lock = AfxClassChain::lockForUnload();
    for (const AfxSharedModule* one = AfxClassChain::firstModule(); one != nullptr;
         one = one->next) {
        if (module == nullptr || one->library->m_hModule == module) return one->library;
    }
    return nullptr;
}

}  // namespace

BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (hModule == nullptr) return FALSE;
    if (state.bInitialized) return TRUE;
    state.hModule = state.hResource = hModule;
    state.pFirstSharedClass = afxTakeClassesOf(hModule);
    state.bInitialized = TRUE;
    return TRUE;
}

void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll) {
    if (!state.bInitialized) return;
    while (CDynLinkLibrary* link = findLink(bAll ? nullptr : state.hModule)) delete link;
    state = {};
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule),
      m_hResource(state.hResource),
      m_bSystem(bSystem),
      m_place(std::make_unique<AfxSharedModule>()) {
    m_place->firstClass = state.pFirstSharedClass;
    m_place->library = this;
    const auto lock = AfxClassChain::lock();
    AfxClassChain::publish(*m_place);
}

CDynLinkLibrary::~CDynLinkLibrary() {
    const auto lock = AfxClassChain::lockForUnload();
    AfxClassChain::withdraw(*m_place);
}
