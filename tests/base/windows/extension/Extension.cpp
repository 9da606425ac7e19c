// An extension module that tests load and free. It is built twice, as number 1 and number 2; both
// have classes of the same names, which their sizes tell apart.
#include <afxdllx.h>

namespace {

AFX_EXTENSION_MODULE state = {};

}  // namespace

// Archives its one number.
class Extension : public CObject {
    DECLARE_SERIAL(Extension)
  public:
    void Serialize(CArchive& ar) override {
        if (ar.IsStoring()) {
            ar << m_value;
        } else {
            ar >> m_value;
        }
    }

  private:
    int m_value = MODULE_NUMBER;
    char m_bulk[100 * MODULE_NUMBER] = {};
};
IMPLEMENT_SERIAL(Extension, CObject, VERSIONABLE_SCHEMA | 3)

// Registered after Extension.
class LateExtension : public CObject {
    DECLARE_SERIAL(LateExtension)
};
IMPLEMENT_SERIAL(LateExtension, CObject, 1)

namespace {

// Bears the name of a class that the test program has.
CRuntimeClass shadow = {"Foo", MODULE_NUMBER, 1, nullptr, nullptr, nullptr};
const AFX_CLASSINIT initShadow(&shadow);

#if MODULE_NUMBER == 2
// Bears the name of one that the class library has.
CRuntimeClass impostor = {"CObArray", MODULE_NUMBER, 1, nullptr, nullptr, nullptr};
const AFX_CLASSINIT initImpostor(&impostor);
#endif

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        if (!AfxInitExtensionModule(state, instance)) return FALSE;
        new CDynLinkLibrary(state);
    } else if (reason == DLL_PROCESS_DETACH) {
        AfxTermExtensionModule(state);
    }
    return TRUE;
}

// What a host that is a DLL itself calls.
extern "C" __declspec(dllexport) void addModule() {
    new CDynLinkLibrary(state);
}

extern "C" __declspec(dllexport) void removeModule(BOOL all) {
    AfxTermExtensionModule(state, all);
}

extern "C" __declspec(dllexport) AFX_EXTENSION_MODULE* moduleState() {
    return &state;
}
