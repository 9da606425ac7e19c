// Extension modules: DLLs whose run-time classes and resources all modules of a process share.
#pragma once

#include "afx.h"

#include <memory>

struct AfxSharedModule;
class COleObjectFactory;

// One per extension module, usually a static of the source with its entry point; all zeros before
// the module is initialised.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
    CRuntimeClass* pFirstSharedClass;  // the module's own classes, newest first
    COleObjectFactory* pFirstSharedFactory;
};

// To be called when the process attaches: fills `state` and moves the module's own classes there
// from the application's. Look-ups find them again once a CDynLinkLibrary publishes them. A second
// call changes nothing. Returns FALSE, with `state` unchanged, if `hModule` is null.
NYBASE_API BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);

// To be called when the process detaches: deletes every CDynLinkLibrary of the module, or of all
// extension modules when `bAll`, so that nothing of a module that is being unloaded is found.
// Without effect on a state that is not initialised.
NYBASE_API void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// A module's place in the chain in which class names and resources are searched. To be created with
// new: AfxTermExtensionModule deletes it. May be created and deleted on any thread.
class NYBASE_API CDynLinkLibrary : public CObject {
    DECLARE_DYNAMIC(CDynLinkLibrary)
  public:
    // Links the module in, before those linked earlier. Resources of a system module are searched
    // after those of all others. REQUIRES: `state` is initialised.
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    ~CDynLinkLibrary() override;
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;

  private:
    std::unique_ptr<AfxSharedModule> m_place;
};
