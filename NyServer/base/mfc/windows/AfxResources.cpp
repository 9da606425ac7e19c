#include "../afxwin.h"

#include <atomic>

#include "AfxModuleChain.h"

namespace {

constinit std::atomic<HINSTANCE> currentResources = nullptr;

// A string in a module's table, without terminator.
struct TableText {
    LPCWSTR text = nullptr;
    int length = 0;  // characters; 0: no such string
};

TableText findText(HINSTANCE instance, UINT id) {
    TableText found;
    // With a buffer size of 0 the call returns a pointer to the text itself.
    found.length = ::LoadStringW(instance, id, reinterpret_cast<LPWSTR>(&found.text), 0);
    return found;
}

}  // namespace

HINSTANCE AFXAPI AfxGetInstanceHandle() {
    return ::GetModuleHandleW(nullptr);
}

HINSTANCE AFXAPI AfxGetResourceHandle() {
    const HINSTANCE current = currentResources;
    return current != nullptr ? current : AfxGetInstanceHandle();
}

void AFXAPI AfxSetResourceHandle(HINSTANCE instance) {
    currentResources = instance;
}

HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR name, LPCTSTR type) {
    const HINSTANCE found = afxFindModule(
        [&](HINSTANCE module) { return ::FindResourceW(module, name, type) != nullptr; });
    return found != nullptr ? found : AfxGetResourceHandle();
}

BOOL CString::LoadString(UINT id) {
    return afxFindModule([&](HINSTANCE module) { return LoadString(module, id) != FALSE; }) !=
           nullptr;
}

BOOL CString::LoadString(HINSTANCE instance, UINT id) {
    const TableText found = findText(instance, id);
    if (found.length <= 0) return FALSE;
    m_text.assign(found.text, static_cast<size_t>(found.length));
    return TRUE;
}
