#include "QoUi.h"

HINSTANCE QoUi::getHInstanceModuleRc(const CString& baseName, const CString& extension,
                                     const CString& language) {
    if (!language.IsEmpty()) {
        const HINSTANCE variant = ::GetModuleHandleW(baseName + language + extension);
        if (variant != nullptr) return variant;
    }
    return ::GetModuleHandleW(baseName + extension);
}
